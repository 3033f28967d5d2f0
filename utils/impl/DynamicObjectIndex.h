#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTINDEX_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTINDEX_H

#include <orv/utils/Common.h>
#include <orv/utils/DynamicObject.h>

#include <cstddef>

namespace orv {
namespace utils {
namespace impl {

/// Shortcuts through the trie of a dynamic object, kept beside its nodes and never saved with them.
///
/// A shortcut says: a key walk standing on node `stand` whose next text is `piece` goes on from
/// node `target`, the node behind the equal link of the piece's last character. A piece is the text
/// between two separators of a path, a child's name or an array index with its closing bracket;
/// the stand is the node behind the separator's equal link (or the root, for top-level names). A
/// shortcut holds for as long as the property that its piece names is there: the object adds it
/// when it makes the property and takes it out when it erases it. A walk that finds no shortcut
/// goes on node by node, so a shortcut only ever takes a walk where it would have gone anyway.
///
/// Names are kept in one hash table, at most eight bytes each. Array indices in their canonical
/// decimal form are kept per array, as a list of targets by position, which an array growing at
/// its end fills in order. Only some levels are worth it: the top one, those of containers with
/// many children, and those with long names. A flag per stand says that the children under it
/// have their shortcuts, so that a walk through any other level does not pay for a useless probe.
class DynamicObjectIndex {
public:
    /// Children a container must reach before its level is indexed.
    static constexpr unsigned int indexedChildCount = 32;
    /// A name this long costs a walk of as many nodes, in a level of any size: it makes its level
    /// worth indexing too.
    static constexpr unsigned int indexedNameLength = 4;

    /// Whether a level is worth indexing, given one of its pieces and the children it now has.
    static bool isWorthIndexing(unsigned long long childCount, const char* piece, unsigned int length)
    {
        unsigned int position;
        return childCount >= indexedChildCount ||
               (length >= indexedNameLength && !readPosition(piece, length, position));
    }

    DynamicObjectIndex();

    bool isIndexed(unsigned int stand) const
    {
        const std::size_t word = stand / 64;
        return word < marks_.size() && ((marks_[word] >> (stand % 64)) & 1) != 0;
    }

    /// The node a walk from `stand` over `piece` goes on from, 0 if not recorded. Kept in every
    /// walk, where a call would cost as much as the probe.
    __attribute__((always_inline)) unsigned int find(unsigned int stand, const char* piece,
                                                     unsigned int length) const
    {
        unsigned int position;
        if (readPosition(piece, length, position)) {
            const unsigned int list = findList(stand);
            if (list == noList) {
                return 0;
            }
            const Vector<unsigned int>& targets = lists_[list];
            return position < targets.size() ? targets[position] : 0;
        }
        unsigned long long packed;
        if (count_ == 0 || !packName(piece, length, packed)) {
            return 0;
        }
        const std::size_t mask = names_.size() - 1;
        for (std::size_t slot = slotOf(stand, packed);; slot = (slot + 1) & mask) {
            const Name& name = names_[slot];
            if (name.stand == stand && name.piece == packed) {
                return name.target;
            }
            if (name.stand == 0) {
                return 0;
            }
        }
    }

    /// Flags `stand` as indexed: from now on its children have their shortcuts.
    void mark(unsigned int stand);
    /// A node that goes back to the store stops being a stand; its shortcuts are gone already.
    void unmark(unsigned int stand)
    {
        if (isIndexed(stand)) {
            dropStand(stand);
        }
    }

    /// Records a shortcut; a piece that no shortcut can hold (too long a name, one with a 0 or a
    /// separator) is left to the walk.
    void add(unsigned int stand, const char* piece, unsigned int length, unsigned int target);
    void remove(unsigned int stand, const char* piece, unsigned int length);
    void clear();

    /// Shortcuts held, and the bytes the index takes.
    std::size_t getShortcutCount() const;
    std::size_t getByteCount() const;

private:
    struct Name {
        unsigned int stand;
        unsigned int target;
        unsigned long long piece;
    };

    struct ListSlot {
        unsigned int stand;
        unsigned int list;
    };

    static constexpr unsigned int noList = 0xFFFFFFFFu;

    /// A name packed into one word; without a 0 byte, the zeros that pad a short name tell its length.
    static bool packName(const char* text, unsigned int length, unsigned long long& piece)
    {
        if (length == 0 || length > sizeof(piece)) {
            return false;
        }
        unsigned long long packed = 0;
        for (unsigned int i = 0; i < length; ++i) {
            const unsigned char byte = static_cast<unsigned char>(text[i]);
            if (byte == 0 || byte == '.' || byte == '[') {
                return false;
            }
            packed |= static_cast<unsigned long long>(byte) << (8 * i);
        }
        piece = packed;
        return true;
    }

    /// The position named by a piece in the form formatArrayKey writes (digits without a leading
    /// zero, then `]`); false for any other text, which a list of positions can't answer.
    static bool readPosition(const char* text, unsigned int length, unsigned int& position)
    {
        // Up to six digits: one more than any array index has.
        if (length < 2 || length > 7 || text[length - 1] != ']' || (text[0] == '0' && length > 2)) {
            return false;
        }
        unsigned int value = 0;
        for (unsigned int i = 0; i + 1 < length; ++i) {
            const unsigned int digit = static_cast<unsigned int>(static_cast<unsigned char>(text[i])) - '0';
            if (digit > 9) {
                return false;
            }
            value = value * 10 + digit;
        }
        position = value;
        return true;
    }

    static std::size_t mix(unsigned int stand, unsigned long long piece)
    {
        return static_cast<std::size_t>((piece ^ (static_cast<unsigned long long>(stand) * 0x9E3779B97F4A7C15ull)) *
                                        0xC2B2AE3D27D4EB4Full);
    }

    std::size_t slotOf(unsigned int stand, unsigned long long piece) const { return mix(stand, piece) >> shift_; }

    unsigned int findList(unsigned int stand) const
    {
        if (listSlots_.empty()) {
            return noList;
        }
        const std::size_t mask = listSlots_.size() - 1;
        for (std::size_t slot = mix(stand, 0) >> listShift_;; slot = (slot + 1) & mask) {
            const ListSlot& entry = listSlots_[slot];
            if (entry.stand == stand) {
                return entry.list;
            }
            if (entry.stand == 0) {
                return noList;
            }
        }
    }

    unsigned int makeList(unsigned int stand);
    void dropStand(unsigned int stand);
    void addName(unsigned int stand, unsigned long long piece, unsigned int target);
    void removeName(unsigned int stand, unsigned long long piece);
    void growNames();
    void growListSlots();

    /// Names: open addressing with linear probing; a stand of 0 marks a free slot, as no walk
    /// stands on node 0.
    Vector<Name> names_;
    std::size_t count_;
    unsigned int shift_;
    /// Positions: a list of targets per array stand, found through a small table of its own, and
    /// the lists no stand uses any more, for reuse.
    Vector<ListSlot> listSlots_;
    std::size_t listCount_;
    unsigned int listShift_;
    Vector<Vector<unsigned int>> lists_;
    Vector<unsigned int> freeLists_;
    /// One flag per node: whether the node is a stand whose children have their shortcuts.
    Vector<unsigned long long> marks_;
};

} // namespace impl

// Every insertion reaches the index through here, and most levels are neither indexed nor worth
// it: the test stays inline in the insertion paths.
inline void DynamicObject::indexChild(unsigned int stand, const char* piece, unsigned int length, unsigned int target,
                                      unsigned long long count)
{
    if (stand == 0 || target == 0) {
        return;
    }
    if (index_ != nullptr && index_->isIndexed(stand)) {
        index_->add(stand, piece, length, target);
    } else if (stand == root_ || impl::DynamicObjectIndex::isWorthIndexing(count, piece, length)) {
        // The top level is met by every lookup by path.
        indexLevel(stand);
    }
}

} // namespace utils
} // namespace orv

#endif
