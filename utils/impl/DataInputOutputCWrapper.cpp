#include <orv/utils/impl/DataInputOutputCWrapper.h>

#include <orv/utils/AbstractLogger.h>

namespace orv {
namespace utils {
namespace impl {

namespace {

/// The C form of the logger the stream was given; null stays null.
orv_Logger* cLogger(AbstractLogger* logger)
{
    return logger != nullptr ? &logger->getWrapper() : nullptr;
}

} // namespace

DataInputOutputCWrapper::DataInputOutputCWrapper(void* userData, const char* description,
    orv_DataInputOutput_isWritableFunction isWritable, orv_DataInputOutput_writeFunction write,
    orv_DataInputOutput_isReadableFunction isReadable, orv_DataInputOutput_readFunction read,
    orv_DataInputOutput_peekReadFunction peekRead)
    : userData_(userData)
    , description_(
          description != nullptr && description[0] != '\0' ? description : AbstractDataInputOutput::getDescription())
    , isWritable_(isWritable)
    , write_(write)
    , isReadable_(isReadable)
    , read_(read)
    , peekRead_(peekRead)
{
}

const char* DataInputOutputCWrapper::getDescription() const
{
    return description_.c_str();
}

bool DataInputOutputCWrapper::isWritable() const
{
    return isWritable_ != nullptr && isWritable_(userData_) != 0;
}

bool DataInputOutputCWrapper::write(const char* buffer, unsigned int size, AbstractLogger* logger)
{
    return write_ != nullptr && write_(userData_, buffer, size, cLogger(logger)) != 0;
}

bool DataInputOutputCWrapper::isReadable() const
{
    return isReadable_ != nullptr && isReadable_(userData_) != 0;
}

bool DataInputOutputCWrapper::read(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    return read_ != nullptr && read_(userData_, buffer, &size, cLogger(logger)) != 0;
}

bool DataInputOutputCWrapper::peekRead(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    return peekRead_ != nullptr && peekRead_(userData_, buffer, &size, cLogger(logger)) != 0;
}

} // namespace impl
} // namespace utils
} // namespace orv
