#include <orv/utils/impl/ProtobufDynamicObjectBuilder.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/ProtobufDynamicObjectReader.h>

#include "DynamicObject.pb.h"

#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/text_format.h>

namespace orv {
namespace utils {
namespace impl {
namespace {

/// Hands every block of printed text to the output as it comes.
class OutputCopier : public google::protobuf::io::CopyingOutputStream {
public:
    OutputCopier(AbstractDataInputOutput& output, AbstractLogger* logger) : output_(output), logger_(logger) {}

    bool Write(const void* buffer, int size) override
    {
        return output_.write(static_cast<const char*>(buffer), static_cast<unsigned int>(size), logger_);
    }

private:
    AbstractDataInputOutput& output_;
    AbstractLogger* logger_;
};

} // namespace

ProtobufDynamicObjectBuilder::ProtobufDynamicObjectBuilder(AbstractDataInputOutput& output)
    : output_(output)
    , message_(nullptr)
{
}

ProtobufDynamicObjectBuilder::~ProtobufDynamicObjectBuilder()
{
    ORV_DELETE(message_);
}

bool ProtobufDynamicObjectBuilder::begin()
{
    if (message_ != nullptr || !stack_.empty()) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "A build is already ongoing.");
        return false;
    }
    message_ = ORV_NEW(proto::DynamicObject)();
    return message_ != nullptr;
}

bool ProtobufDynamicObjectBuilder::end()
{
    if (message_ == nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "No build is ongoing.");
        return false;
    }
    if (!stack_.empty()) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "Build not finished");
        return false;
    }
    proto::Version& version = *message_->mutable_version();
    version.set_major(protobufFormatMajor);
    version.set_minor(protobufFormatMinor);
    version.set_patch(protobufFormatPatch);

    bool written;
    {
        OutputCopier copier(output_, logger_);
        google::protobuf::io::CopyingOutputStreamAdaptor adaptor(&copier, -1);
        // The adaptor keeps the last block until it is flushed; a write that fails then is as much
        // a failure as one during the print.
        written = google::protobuf::TextFormat::Print(*message_, &adaptor) && adaptor.Flush();
    }
    if (!written) {
        ORV_LOG_ERROR(logger_, error::ioProblem,
                      "Unable to serialize the given dynamic object: " << message_->DebugString());
    }
    ORV_DELETE(message_);
    message_ = nullptr;
    return written;
}

proto::Property* ProtobufDynamicObjectBuilder::currentProperty()
{
    if (message_ == nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "No build is ongoing.");
        return nullptr;
    }
    if (stack_.empty()) {
        stack_.push_back(message_->mutable_root());
    }
    return stack_.back();
}

proto::Property* ProtobufDynamicObjectBuilder::topProperty()
{
    return stack_.empty() ? nullptr : stack_.back();
}

bool ProtobufDynamicObjectBuilder::null()
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    // The stored form has no null: an empty object stands for it.
    property->set_type(proto::Property::Object);
    property->clear_objectvalue();
    property->clear_arrayvalue();
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::boolean(bool value)
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::Bool);
    property->set_boolvalue(value);
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::integer(long long value)
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::Int);
    property->set_intvalue(value);
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::real(double value)
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::Real);
    property->set_realvalue(value);
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::string(const char* value, unsigned int size)
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::String);
    property->set_stringvalue(value, size);
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::beginObject()
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::Object);
    return true;
}

bool ProtobufDynamicObjectBuilder::objectChild(const char* key, unsigned int size)
{
    proto::Property* property = topProperty();
    if (property == nullptr || property->type() != proto::Property::Object) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an object.");
        return false;
    }
    proto::Property::NamedProperty& child = *property->add_objectvalue();
    child.set_key(key, size);
    stack_.push_back(child.mutable_value());
    return true;
}

bool ProtobufDynamicObjectBuilder::endObject()
{
    if (topProperty() == nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an object.");
        return false;
    }
    stack_.pop_back();
    return true;
}

bool ProtobufDynamicObjectBuilder::beginArray()
{
    proto::Property* property = currentProperty();
    if (property == nullptr) {
        return false;
    }
    property->set_type(proto::Property::Array);
    return true;
}

bool ProtobufDynamicObjectBuilder::arrayChild()
{
    proto::Property* property = topProperty();
    if (property == nullptr || property->type() != proto::Property::Array) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an array.");
        return false;
    }
    stack_.push_back(property->add_arrayvalue());
    return true;
}

bool ProtobufDynamicObjectBuilder::endArray()
{
    if (topProperty() == nullptr) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an array.");
        return false;
    }
    stack_.pop_back();
    return true;
}

} // namespace impl
} // namespace utils
} // namespace orv
