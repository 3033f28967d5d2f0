#ifndef ORV_UTILS_ABSTRACTDATAINPUTOUTPUT_H
#define ORV_UTILS_ABSTRACTDATAINPUTOUTPUT_H

#include <orv/utils/c/DataInputOutput.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// The byte stream every reader and writer of the library goes through. Reads take the wanted
/// size in and give the delivered size out: a partial read is a success, and a short or empty
/// count is how the end of the data shows. Failures answer false and go to the logger, if any.
class ORV_UTILS_API AbstractDataInputOutput {
public:
    AbstractDataInputOutput() = default;
    AbstractDataInputOutput(const AbstractDataInputOutput&) = default;
    AbstractDataInputOutput& operator=(const AbstractDataInputOutput&) = default;
    virtual ~AbstractDataInputOutput();

    virtual const char* getDescription() const;
    virtual bool isWritable() const = 0;
    virtual bool write(const char* buffer, unsigned int size, AbstractLogger* logger) = 0;
    virtual bool isReadable() const = 0;
    virtual bool read(char* buffer, unsigned int& size, AbstractLogger* logger) = 0;
    /// Reads like `read` but leaves the bytes in the stream. Streams that can't look ahead refuse.
    virtual bool peekRead(char* buffer, unsigned int& size, AbstractLogger* logger);

    /// The C handle of this very stream.
    orv_DataInputOutput& toCstruct() { return *this; }
    orv_DataInputOutput& getWrapper() { return *this; }
    static AbstractDataInputOutput* fromCstruct(orv_DataInputOutput* io) { return io; }
};

} // namespace utils
} // namespace orv

#endif
