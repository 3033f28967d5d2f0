#include <orv/utils/impl/ProtobufDynamicObjectReader.h>

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/ProtobufText.h>

#include "DynamicObject.pb.h"


namespace orv {
namespace utils {
namespace impl {
namespace {

bool walkProperty(const proto::Property& property, AbstractObjectBuilder& builder)
{
    AbstractLogger* logger = builder.getLogger();
    switch (property.type()) {
    case proto::Property::Int:
        if (!property.has_intvalue()) {
            ORV_LOG_ERROR(logger, error::fileFormatCorrupted,
                          "Integer property not having an integer value in the protobuf file.");
            return false;
        }
        return builder.integer(property.intvalue());
    case proto::Property::Real:
        if (!property.has_realvalue()) {
            ORV_LOG_ERROR(logger, error::fileFormatCorrupted,
                          "Real property not having a real value in the protobuf file.");
            return false;
        }
        return builder.real(property.realvalue());
    case proto::Property::Bool:
        if (!property.has_boolvalue()) {
            ORV_LOG_ERROR(logger, error::fileFormatCorrupted,
                          "Boolean property not having a boolean value in the protobuf file.");
            return false;
        }
        return builder.boolean(property.boolvalue());
    case proto::Property::String:
        if (!property.has_stringvalue()) {
            ORV_LOG_ERROR(logger, error::fileFormatCorrupted,
                          "String property not having a string value in the protobuf file.");
            return false;
        }
        return builder.string(property.stringvalue().data(), static_cast<unsigned int>(property.stringvalue().size()));
    case proto::Property::Array:
        if (!builder.beginArray()) {
            return false;
        }
        for (const proto::Property& element : property.arrayvalue()) {
            if (!builder.arrayChild() || !walkProperty(element, builder)) {
                return false;
            }
        }
        return builder.endArray();
    case proto::Property::Object:
        if (!builder.beginObject()) {
            return false;
        }
        for (const proto::Property::NamedProperty& child : property.objectvalue()) {
            if (!builder.objectChild(child.key().data(), static_cast<unsigned int>(child.key().size()))
                || !walkProperty(child.value(), builder)) {
                return false;
            }
        }
        return builder.endObject();
    }
    ORV_LOG_ERROR(logger, error::invalidData,
                  "Unexpected type indicator for property of a dynamic object found: " << property.type());
    return false;
}

} // namespace

bool readProtobufDynamicObject(const char* data, unsigned int size, AbstractObjectBuilder& builder)
{
    AbstractLogger* logger = builder.getLogger();
    proto::DynamicObject message;
    if (!parseProtobufText(data, size, message)) {
        ORV_LOG_ERROR(logger, error::invalidData, "Unable to deserialize a dynamic object: " << message.DebugString());
        return false;
    }
    const proto::Version& version = message.version();
    if (version.major() != protobufFormatMajor) {
        ORV_LOG_ERROR(logger, error::invalidData,
                      "Error while deserializing: The file originates from a version, v"
                          << version.major() << "." << version.minor() << "." << version.patch()
                          << ", that is not compatible with the current version, v" << protobufFormatMajor << "."
                          << protobufFormatMinor << "." << protobufFormatPatch << ".");
        return false;
    }
    if (!message.has_root()) {
        return true;
    }
    return builder.begin() && walkProperty(message.root(), builder) && builder.end();
}

} // namespace impl
} // namespace utils
} // namespace orv
