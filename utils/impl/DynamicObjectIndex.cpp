#include <orv/utils/impl/DynamicObjectIndex.h>

namespace orv {
namespace utils {
namespace impl {

namespace {

constexpr std::size_t initialCapacity = 64;

unsigned int shiftFor(std::size_t capacity)
{
    unsigned int shift = 64;
    for (std::size_t size = capacity; size > 1; size /= 2) {
        --shift;
    }
    return shift;
}

} // namespace

DynamicObjectIndex::DynamicObjectIndex()
    : names_(), count_(0), shift_(64), listSlots_(), listCount_(0), listShift_(64), lists_(), freeLists_(), marks_()
{
}

void DynamicObjectIndex::mark(unsigned int stand)
{
    const std::size_t word = stand / 64;
    if (word >= marks_.size()) {
        marks_.resize(word + 1 + word / 2, 0);
    }
    marks_[word] |= 1ull << (stand % 64);
}

void DynamicObjectIndex::add(unsigned int stand, const char* piece, unsigned int length, unsigned int target)
{
    unsigned int position;
    if (readPosition(piece, length, position)) {
        unsigned int list = findList(stand);
        if (list == noList) {
            list = makeList(stand);
        }
        Vector<unsigned int>& targets = lists_[list];
        if (position >= targets.size()) {
            targets.resize(position + 1, 0);
        }
        targets[position] = target;
        return;
    }
    unsigned long long packed;
    if (packName(piece, length, packed)) {
        addName(stand, packed, target);
    }
}

void DynamicObjectIndex::remove(unsigned int stand, const char* piece, unsigned int length)
{
    unsigned int position;
    if (readPosition(piece, length, position)) {
        const unsigned int list = findList(stand);
        if (list == noList) {
            return;
        }
        Vector<unsigned int>& targets = lists_[list];
        if (position < targets.size()) {
            targets[position] = 0;
            // Arrays lose their last elements: the list shrinks with them.
            while (!targets.empty() && targets.back() == 0) {
                targets.pop_back();
            }
        }
        return;
    }
    unsigned long long packed;
    if (packName(piece, length, packed)) {
        removeName(stand, packed);
    }
}

void DynamicObjectIndex::clear()
{
    Vector<Name>().swap(names_);
    Vector<ListSlot>().swap(listSlots_);
    Vector<Vector<unsigned int>>().swap(lists_);
    Vector<unsigned int>().swap(freeLists_);
    Vector<unsigned long long>().swap(marks_);
    count_ = 0;
    shift_ = 64;
    listCount_ = 0;
    listShift_ = 64;
}

std::size_t DynamicObjectIndex::getShortcutCount() const
{
    std::size_t count = count_;
    for (const Vector<unsigned int>& targets : lists_) {
        for (unsigned int target : targets) {
            count += target != 0 ? 1 : 0;
        }
    }
    return count;
}

std::size_t DynamicObjectIndex::getByteCount() const
{
    std::size_t bytes = names_.capacity() * sizeof(Name) + listSlots_.capacity() * sizeof(ListSlot) +
                        lists_.capacity() * sizeof(Vector<unsigned int>) + freeLists_.capacity() * sizeof(unsigned int) +
                        marks_.capacity() * sizeof(unsigned long long);
    for (const Vector<unsigned int>& targets : lists_) {
        bytes += targets.capacity() * sizeof(unsigned int);
    }
    return bytes;
}

unsigned int DynamicObjectIndex::makeList(unsigned int stand)
{
    if ((listCount_ + 1) * 2 > listSlots_.size()) {
        growListSlots();
    }
    unsigned int list;
    if (!freeLists_.empty()) {
        list = freeLists_.back();
        freeLists_.pop_back();
    } else {
        list = static_cast<unsigned int>(lists_.size());
        lists_.emplace_back();
    }
    const std::size_t mask = listSlots_.size() - 1;
    std::size_t slot = mix(stand, 0) >> listShift_;
    while (listSlots_[slot].stand != 0) {
        slot = (slot + 1) & mask;
    }
    listSlots_[slot] = ListSlot{stand, list};
    ++listCount_;
    return list;
}

void DynamicObjectIndex::dropStand(unsigned int stand)
{
    marks_[stand / 64] &= ~(1ull << (stand % 64));
    if (listSlots_.empty()) {
        return;
    }
    const std::size_t mask = listSlots_.size() - 1;
    std::size_t slot = mix(stand, 0) >> listShift_;
    for (;; slot = (slot + 1) & mask) {
        if (listSlots_[slot].stand == 0) {
            return;
        }
        if (listSlots_[slot].stand == stand) {
            break;
        }
    }
    const unsigned int list = listSlots_[slot].list;
    Vector<unsigned int>().swap(lists_[list]);
    freeLists_.push_back(list);
    // Later slots of the same run move back into the hole when their home slot allows it, so that
    // no probe meets a gap before its entry.
    std::size_t hole = slot;
    for (std::size_t next = (hole + 1) & mask; listSlots_[next].stand != 0; next = (next + 1) & mask) {
        const std::size_t home = mix(listSlots_[next].stand, 0) >> listShift_;
        if (((next - home) & mask) >= ((next - hole) & mask)) {
            listSlots_[hole] = listSlots_[next];
            hole = next;
        }
    }
    listSlots_[hole] = ListSlot{0, 0};
    --listCount_;
}

void DynamicObjectIndex::addName(unsigned int stand, unsigned long long piece, unsigned int target)
{
    // At most half full, so that a probe that misses stops soon.
    if ((count_ + 1) * 2 > names_.size()) {
        growNames();
    }
    const std::size_t mask = names_.size() - 1;
    for (std::size_t slot = slotOf(stand, piece);; slot = (slot + 1) & mask) {
        Name& name = names_[slot];
        if (name.stand == 0) {
            name = Name{stand, target, piece};
            ++count_;
            return;
        }
        if (name.stand == stand && name.piece == piece) {
            name.target = target;
            return;
        }
    }
}

void DynamicObjectIndex::removeName(unsigned int stand, unsigned long long piece)
{
    if (count_ == 0) {
        return;
    }
    const std::size_t mask = names_.size() - 1;
    std::size_t slot = slotOf(stand, piece);
    for (;; slot = (slot + 1) & mask) {
        const Name& name = names_[slot];
        if (name.stand == 0) {
            return;
        }
        if (name.stand == stand && name.piece == piece) {
            break;
        }
    }
    std::size_t hole = slot;
    for (std::size_t next = (hole + 1) & mask; names_[next].stand != 0; next = (next + 1) & mask) {
        const std::size_t home = slotOf(names_[next].stand, names_[next].piece);
        if (((next - home) & mask) >= ((next - hole) & mask)) {
            names_[hole] = names_[next];
            hole = next;
        }
    }
    names_[hole] = Name{0, 0, 0};
    --count_;
}

void DynamicObjectIndex::growNames()
{
    Vector<Name> old;
    old.swap(names_);
    const std::size_t capacity = old.empty() ? initialCapacity : old.size() * 2;
    names_.assign(capacity, Name{0, 0, 0});
    shift_ = shiftFor(capacity);
    const std::size_t mask = capacity - 1;
    for (const Name& name : old) {
        if (name.stand != 0) {
            std::size_t slot = slotOf(name.stand, name.piece);
            while (names_[slot].stand != 0) {
                slot = (slot + 1) & mask;
            }
            names_[slot] = name;
        }
    }
}

void DynamicObjectIndex::growListSlots()
{
    Vector<ListSlot> old;
    old.swap(listSlots_);
    const std::size_t capacity = old.empty() ? initialCapacity : old.size() * 2;
    listSlots_.assign(capacity, ListSlot{0, 0});
    listShift_ = shiftFor(capacity);
    const std::size_t mask = capacity - 1;
    for (const ListSlot& entry : old) {
        if (entry.stand != 0) {
            std::size_t slot = mix(entry.stand, 0) >> listShift_;
            while (listSlots_[slot].stand != 0) {
                slot = (slot + 1) & mask;
            }
            listSlots_[slot] = entry;
        }
    }
}

} // namespace impl
} // namespace utils
} // namespace orv
