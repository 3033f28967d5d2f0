#ifndef ORV_BENCH_NULLBUILDER_H
#define ORV_BENCH_NULLBUILDER_H

#include <orv/utils/AbstractObjectBuilder.h>

namespace orv {
namespace bench {

/// A consumer that takes every event and keeps nothing: what is left is the producer's own cost.
class NullBuilder : public utils::AbstractObjectBuilder {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool integer(long long) override { return true; }
    bool real(double) override { return true; }
    using AbstractObjectBuilder::string;
    bool string(const char*, unsigned int) override { return true; }
    bool beginObject() override { return true; }
    using AbstractObjectBuilder::objectChild;
    bool objectChild(const char*, unsigned int) override { return true; }
    bool endObject() override { return true; }
    bool beginArray() override { return true; }
    bool arrayChild() override { return true; }
    bool endArray() override { return true; }
};

} // namespace bench
} // namespace orv

#endif
