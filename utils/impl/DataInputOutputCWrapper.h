#ifndef ORV_UTILS_IMPL_DATAINPUTOUTPUTCWRAPPER_H
#define ORV_UTILS_IMPL_DATAINPUTOUTPUTCWRAPPER_H

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/Common.h>

namespace orv {
namespace utils {
namespace impl {

/// A stream that a C host supplies as callbacks. A missing callback answers false at once and
/// reports nothing; in particular a missing `peekRead` doesn't fall back on the base refusal.
class DataInputOutputCWrapper : public AbstractDataInputOutput {
public:
    DataInputOutputCWrapper(void* userData, const char* description, orv_DataInputOutput_isWritableFunction isWritable,
        orv_DataInputOutput_writeFunction write, orv_DataInputOutput_isReadableFunction isReadable,
        orv_DataInputOutput_readFunction read, orv_DataInputOutput_peekReadFunction peekRead);

    const char* getDescription() const override;
    bool isWritable() const override;
    bool write(const char* buffer, unsigned int size, AbstractLogger* logger) override;
    bool isReadable() const override;
    bool read(char* buffer, unsigned int& size, AbstractLogger* logger) override;
    bool peekRead(char* buffer, unsigned int& size, AbstractLogger* logger) override;

private:
    void* userData_;
    String description_;
    orv_DataInputOutput_isWritableFunction isWritable_;
    orv_DataInputOutput_writeFunction write_;
    orv_DataInputOutput_isReadableFunction isReadable_;
    orv_DataInputOutput_readFunction read_;
    orv_DataInputOutput_peekReadFunction peekRead_;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
