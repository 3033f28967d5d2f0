#include <orv/utils/AbstractObjectBuilder.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/details/ObjectBuilderTable.h>

#include <cstring>

namespace orv {
namespace utils {

namespace {

const char* const objectsNotSupported = "Object properties not supported by this object builder.";
const char* const arraysNotSupported = "Array properties not supported by this object builder.";

} // namespace

AbstractObjectBuilder::AbstractObjectBuilder()
    : logger_(nullptr)
    , wrapper_()
{
    details::fillObjectBuilderTable(wrapper_, this);
}

AbstractObjectBuilder::AbstractObjectBuilder(const AbstractObjectBuilder& other)
    : logger_(other.logger_)
    , wrapper_(other.wrapper_)
{
}

AbstractObjectBuilder& AbstractObjectBuilder::operator=(const AbstractObjectBuilder& other)
{
    logger_ = other.logger_;
    wrapper_ = other.wrapper_;
    return *this;
}

AbstractObjectBuilder::~AbstractObjectBuilder() = default;

void AbstractObjectBuilder::setLogger(AbstractLogger* logger)
{
    logger_ = logger;
}

AbstractLogger* AbstractObjectBuilder::getLogger()
{
    return logger_;
}

bool AbstractObjectBuilder::begin()
{
    return true;
}

bool AbstractObjectBuilder::end()
{
    return true;
}

bool AbstractObjectBuilder::null()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, "Null properties not supported by this object builder.");
    return false;
}

bool AbstractObjectBuilder::boolean(bool)
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, "Boolean properties not supported by this object builder.");
    return false;
}

bool AbstractObjectBuilder::integer(long long)
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, "Integer properties not supported by this object builder.");
    return false;
}

bool AbstractObjectBuilder::real(double)
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, "Real properties not supported by this object builder.");
    return false;
}

bool AbstractObjectBuilder::string(const char* value)
{
    ORV_CHECK(value != nullptr, "value");
    if (value == nullptr) {
        // The hook returned: there is no text to send.
        return false;
    }
    return string(value, static_cast<unsigned int>(std::strlen(value)));
}

bool AbstractObjectBuilder::string(const char*, unsigned int)
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, "String properties not supported by this object builder.");
    return false;
}

bool AbstractObjectBuilder::beginObject()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, objectsNotSupported);
    return false;
}

bool AbstractObjectBuilder::objectChild(const char* key)
{
    ORV_CHECK(key != nullptr, "key");
    if (key == nullptr) {
        // The hook returned: there is no key to send.
        return false;
    }
    return objectChild(key, static_cast<unsigned int>(std::strlen(key)));
}

bool AbstractObjectBuilder::objectChild(const char*, unsigned int)
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, objectsNotSupported);
    return false;
}

bool AbstractObjectBuilder::endObject()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, objectsNotSupported);
    return false;
}

bool AbstractObjectBuilder::beginArray()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, arraysNotSupported);
    return false;
}

bool AbstractObjectBuilder::arrayChild()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, arraysNotSupported);
    return false;
}

bool AbstractObjectBuilder::endArray()
{
    ORV_LOG_ERROR(logger_, error::invalidOperation, arraysNotSupported);
    return false;
}

} // namespace utils
} // namespace orv
