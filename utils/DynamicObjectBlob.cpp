// The blob form of a DynamicObject: its node store written as it lies in memory.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/details/Logging.h>

#include <cstring>

namespace orv {
namespace utils {

namespace {

const unsigned char blobMagic = 0x81;
const unsigned char blobVersion[3] = { 0, 4, 0 };
const unsigned int headerSize = 12;

bool writeWord(AbstractDataInputOutput& output, unsigned int word, AbstractLogger* logger)
{
    char bytes[sizeof(word)];
    std::memcpy(bytes, &word, sizeof(word));
    return output.write(bytes, sizeof(bytes), logger);
}

/// Reads exactly `size` bytes; a short count is a failure like any other.
bool readExactly(AbstractDataInputOutput& input, char* buffer, unsigned int size, AbstractLogger* logger)
{
    unsigned int count = size;
    return input.read(buffer, count, logger) && count == size;
}

bool readWord(AbstractDataInputOutput& input, unsigned int& word, AbstractLogger* logger)
{
    char bytes[sizeof(word)];
    if (!readExactly(input, bytes, sizeof(bytes), logger)) {
        return false;
    }
    std::memcpy(&word, bytes, sizeof(word));
    return true;
}

} // namespace

bool DynamicObject::saveBlob(AbstractDataInputOutput& output, AbstractLogger* logger) const
{
    if (!output.isWritable()) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to save dynamic object blob, the given input is not writable.");
        return false;
    }
    const unsigned int blockSize = nodeAllocator_->blockSize_;
    const unsigned int blockCount = static_cast<unsigned int>(blocks_.size());
    char header[headerSize];
    header[0] = static_cast<char>(blobMagic);
    std::memcpy(header + 1, blobVersion, sizeof(blobVersion));
    std::memcpy(header + 4, &blockSize, sizeof(blockSize));
    std::memcpy(header + 8, &blockCount, sizeof(blockCount));
    if (!output.write(header, headerSize, logger)) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "Unable to save dynamic object blob, can't write the header.");
        return false;
    }
    if (!writeWord(output, root_, logger)) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to save dynamic object blob, can't write the root property.");
        return false;
    }
    if (!writeWord(output, lastBlockUsed_, logger)) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to save dynamic object blob, can't write the free node index.");
        return false;
    }
    if (!writeWord(output, firstFreeNode_, logger)) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to save dynamic object blob, can't write the free node list.");
        return false;
    }
    const unsigned int blockBytes = blockSize * static_cast<unsigned int>(sizeof(Node));
    for (unsigned int block = 0; block < blockCount; ++block) {
        if (!output.write(reinterpret_cast<const char*>(blocks_[block]), blockBytes, logger)) {
            ORV_LOG_ERROR(logger, error::invalidArgument,
                "Unable to save dynamic object blob, can't write the block #" << block << ".");
            return false;
        }
    }
    return true;
}

bool DynamicObject::loadBlob(AbstractDataInputOutput& input, AbstractLogger* logger)
{
    if (!input.isReadable()) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to load dynamic object blob, the given input is not readable.");
        return false;
    }
    char header[headerSize];
    if (!readExactly(input, header, headerSize, logger)) {
        ORV_LOG_ERROR(
            logger, error::invalidArgument, "Unable to load dynamic object blob, can't read the expected header.");
        return false;
    }
    if (static_cast<unsigned char>(header[0]) != blobMagic) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, wrong magic number (expecting " << static_cast<char>(blobMagic)
                                                                                 << ", got " << header[0] << ").");
        return false;
    }
    if (std::memcmp(header + 1, blobVersion, sizeof(blobVersion)) != 0) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, wrong version number (expecting "
                << static_cast<int>(blobVersion[0]) << "." << static_cast<int>(blobVersion[1]) << "."
                << static_cast<int>(blobVersion[2]) << ", got " << header[1] << "." << header[2] << "." << header[3]
                << ").");
        return false;
    }
    unsigned int blockSize;
    unsigned int blockCount;
    std::memcpy(&blockSize, header + 4, sizeof(blockSize));
    std::memcpy(&blockCount, header + 8, sizeof(blockCount));
    if (blockSize != nodeAllocator_->blockSize_) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, wrong block size (expecting " << nodeAllocator_->blockSize_ << ", got "
                                                                               << blockSize << ").");
        return false;
    }
    if (blockCount == 0) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "Unable to load dynamic object blob, no blocks.");
        return false;
    }

    // From here on the old nodes are gone: a failure leaves an object with no blocks, which the
    // caller must clear or load again. The blocks already held take the new nodes first, so that
    // loading over an object costs the copy of the bytes rather than a trip through the shared
    // allocator's lock for every block.
    const Vector<Node*> held(blocks_);
    blocks_.clear();
    doClear();
    unsigned int reused = 0;
    auto fail = [this, &held, &reused]() {
        for (; reused < held.size(); ++reused) {
            nodeAllocator_->deallocate(held[reused]);
        }
        doClear();
        return false;
    };
    if (!readWord(input, root_, logger)) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, can't read the expected root property.");
        return fail();
    }
    if (!readWord(input, lastBlockUsed_, logger)) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, can't read the expected free node index.");
        return fail();
    }
    if (!readWord(input, firstFreeNode_, logger)) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to load dynamic object blob, can't read the expected free node list.");
        return fail();
    }
    const unsigned int blockBytes = blockSize * static_cast<unsigned int>(sizeof(Node));
    for (unsigned int block = 0; block < blockCount; ++block) {
        const bool isHeld = reused < held.size();
        Node* nodes = isHeld ? held[reused] : nodeAllocator_->allocate();
        if (nodes == nullptr || !readExactly(input, reinterpret_cast<char*>(nodes), blockBytes, logger)) {
            ORV_LOG_ERROR(logger, error::invalidArgument,
                "Unable to load dynamic object blob, can't read the expected block #" << block << ".");
            if (nodes != nullptr && !isHeld) {
                nodeAllocator_->deallocate(nodes);
            }
            return fail();
        }
        reused += isHeld ? 1 : 0;
        blocks_.push_back(nodes);
    }
    for (; reused < held.size(); ++reused) {
        nodeAllocator_->deallocate(held[reused]);
    }
    // The side index is not part of a blob, and making it again from the nodes would cost the load
    // many times its copy: a loaded object starts without shortcuts (doClear dropped them), and
    // its levels get theirs again as they change, as in an object built key by key.
    return true;
}

} // namespace utils
} // namespace orv
