// Test entry point: every test must release all it takes from the library allocator.

#include <orv/allocator/Allocator.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

class AllocatorLeakCheck : public testing::EmptyTestEventListener {
public:
    void OnTestStart(const testing::TestInfo&) override
    {
        const orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
        startSerial_ = allocator.getNextSerial();
        startBlocks_ = allocator.getLiveBlockCount();
    }

    void OnTestEnd(const testing::TestInfo&) override
    {
        const orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
        if (allocator.getLiveBlockCount() <= startBlocks_) {
            return;
        }
        std::ostringstream report;
        report << "The test leaked " << (allocator.getLiveBlockCount() - startBlocks_)
               << " block(s) of the library allocator:";
        allocator.forEachLiveBlock(startSerial_, [&report](const orv::allocator::BlockInfo& block) {
            report << "\n  " << block.size << " bytes from " << (block.file ? block.file : "?") << ":" << block.line;
        });
        ADD_FAILURE() << report.str();
    }

private:
    unsigned long long startSerial_ = 0;
    std::size_t startBlocks_ = 0;
};

} // namespace

int main(int argc, char** argv)
{
    orv::allocator::Allocator::instance().setBlockTracking(true);
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new AllocatorLeakCheck);
    return RUN_ALL_TESTS();
}
