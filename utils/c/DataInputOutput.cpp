#include <orv/utils/c/DataInputOutput.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/LoggerCWrapper.h>
#include <orv/utils/impl/DataInputOutputCWrapper.h>

using orv::utils::AbstractDataInputOutput;
using orv::utils::LoggerCWrapper;
using orv::utils::impl::DataInputOutputCWrapper;

// Every operation hands the stream a logger wrapped around the C record, even a null one, so a
// stream sees the same kind of logger from C as from C++.

namespace {

template <typename Operation>
orv_bool readWith(orv_DataInputOutput* io, char* buffer, unsigned int* size, orv_Logger* logger, Operation operation)
{
    ORV_CHECK(io != nullptr, "io");
    ORV_CHECK(size != nullptr, "size");
    if (io == nullptr || size == nullptr) {
        // The hook returned: nothing is read.
        return 0;
    }
    ORV_CHECK(buffer != nullptr || *size == 0, "buffer");
    if (buffer == nullptr && *size != 0) {
        // The hook returned: there is nowhere to read to.
        *size = 0;
        return 0;
    }
    LoggerCWrapper wrapper(logger);
    return operation(AbstractDataInputOutput::fromCstruct(io), buffer, *size, &wrapper);
}

} // namespace

extern "C" {

orv_DataInputOutput* orv_DataInputOutput_create(void* userData, const char* description,
    orv_DataInputOutput_isWritableFunction isWritable, orv_DataInputOutput_writeFunction write,
    orv_DataInputOutput_isReadableFunction isReadable, orv_DataInputOutput_readFunction read,
    orv_DataInputOutput_peekReadFunction peekRead)
{
    ORV_CHECK(description != nullptr, "description");
    // The hook returned: the stream gets the text of a stream without description.
    DataInputOutputCWrapper* io
        = ORV_NEW(DataInputOutputCWrapper)(userData, description, isWritable, write, isReadable, read, peekRead);
    ORV_CHECK(io != nullptr, "io");
    return io;
}

void orv_DataInputOutput_destroy(orv_DataInputOutput* io)
{
    ORV_DELETE(AbstractDataInputOutput::fromCstruct(io));
}

const char* orv_DataInputOutput_getDescription(orv_DataInputOutput* io)
{
    ORV_CHECK(io != nullptr, "io");
    if (io == nullptr) {
        // The hook returned: a text the caller can still print.
        return "";
    }
    return AbstractDataInputOutput::fromCstruct(io)->getDescription();
}

orv_bool orv_DataInputOutput_isWritable(orv_DataInputOutput* io)
{
    ORV_CHECK(io != nullptr, "io");
    // The hook returned: there is no stream to write to.
    return io != nullptr && AbstractDataInputOutput::fromCstruct(io)->isWritable();
}

orv_bool orv_DataInputOutput_write(orv_DataInputOutput* io, const char* buffer, unsigned int size, orv_Logger* logger)
{
    ORV_CHECK(io != nullptr, "io");
    ORV_CHECK(buffer != nullptr || size == 0, "buffer");
    if (io == nullptr || (buffer == nullptr && size != 0)) {
        // The hook returned: nothing is written.
        return 0;
    }
    LoggerCWrapper wrapper(logger);
    return AbstractDataInputOutput::fromCstruct(io)->write(buffer, size, &wrapper);
}

orv_bool orv_DataInputOutput_isReadable(orv_DataInputOutput* io)
{
    ORV_CHECK(io != nullptr, "io");
    // The hook returned: there is no stream to read from.
    return io != nullptr && AbstractDataInputOutput::fromCstruct(io)->isReadable();
}

orv_bool orv_DataInputOutput_read(orv_DataInputOutput* io, char* buffer, unsigned int* size, orv_Logger* logger)
{
    return readWith(io, buffer, size, logger,
        [](AbstractDataInputOutput* stream, char* bytes, unsigned int& count, LoggerCWrapper* wrapper) {
            return stream->read(bytes, count, wrapper);
        });
}

orv_bool orv_DataInputOutput_peekRead(orv_DataInputOutput* io, char* buffer, unsigned int* size, orv_Logger* logger)
{
    return readWith(io, buffer, size, logger,
        [](AbstractDataInputOutput* stream, char* bytes, unsigned int& count, LoggerCWrapper* wrapper) {
            return stream->peekRead(bytes, count, wrapper);
        });
}

} // extern "C"
