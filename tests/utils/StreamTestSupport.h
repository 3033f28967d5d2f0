#ifndef ORV_TESTS_UTILS_STREAMTESTSUPPORT_H
#define ORV_TESTS_UTILS_STREAMTESTSUPPORT_H

#include <orv/utils/AbstractDataInputOutput.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

namespace orv {
namespace test {

/// A file path of its own in the test's temporary folder, removed with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& name)
        : path_(testing::TempDir() + "orv_" + std::to_string(::getpid()) + "_" + name)
    {
        std::remove(path_.c_str());
    }
    ~TemporaryFile() { std::remove(path_.c_str()); }

    const std::string& path() const { return path_; }
    const char* c_str() const { return path_.c_str(); }

    void write(const std::string& bytes) const
    {
        std::ofstream file(path_, std::ios_base::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::string read() const
    {
        std::ifstream file(path_, std::ios_base::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

private:
    std::string path_;
};

/// Reads or peeks up to `size` bytes and gives what came; the call must succeed.
inline std::string readSome(utils::AbstractDataInputOutput& stream, unsigned int size, bool peek = false)
{
    std::string buffer(size, '#');
    EXPECT_TRUE(peek ? stream.peekRead(&buffer[0], size, nullptr) : stream.read(&buffer[0], size, nullptr));
    buffer.resize(size);
    return buffer;
}

} // namespace test
} // namespace orv

#endif
