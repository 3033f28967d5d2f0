#ifndef ORV_UTILS_FILEINPUTOUTPUT_H
#define ORV_UTILS_FILEINPUTOUTPUT_H

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/Common.h>
#include <orv/utils/ScopedPtr.h>

#include <iosfwd>

namespace orv {
namespace utils {

/// A file, open for reading or for writing, never both. Readable and writable mean that the
/// stream is in the good state: a read that meets the end of the file answers true with the short
/// count, and from then on the file is neither readable nor open, while further reads answer true
/// with a count of 0. `read` and `peekRead` on a file that has no input stream at all (never opened,
/// or open for writing) are programming errors.
class ORV_UTILS_API FileInputOutput : public AbstractDataInputOutput {
public:
    /// Opens nothing.
    explicit FileInputOutput(const char* path);
    ~FileInputOutput() override;

    bool openForReading(AbstractLogger* logger);
    /// Truncates an existing file.
    bool openForWriting(AbstractLogger* logger);
    bool close(AbstractLogger* logger);
    bool isOpen() const;

    const char* getDescription() const override;
    bool isWritable() const override;
    bool write(const char* buffer, unsigned int size, AbstractLogger* logger) override;
    bool isReadable() const override;
    bool read(char* buffer, unsigned int& size, AbstractLogger* logger) override;
    bool peekRead(char* buffer, unsigned int& size, AbstractLogger* logger) override;

    FileInputOutput(const FileInputOutput&) = delete;
    FileInputOutput& operator=(const FileInputOutput&) = delete;

private:
    /// True, after reporting it, when the file is already open for reading or writing.
    bool refuseWhileOpen(const char* purpose, AbstractLogger* logger) const;

    String path_;
    ScopedPtr<std::ifstream> input_;
    ScopedPtr<std::ofstream> output_;
};

} // namespace utils
} // namespace orv

#endif
