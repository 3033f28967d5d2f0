#ifndef ORV_UTILS_FACILITIES_H
#define ORV_UTILS_FACILITIES_H

#include <orv/utils/Singleton.h>

namespace orv {
namespace utils {

class AbstractLogger;
class RandomManager;
class StringTable;
class TypeManager;

namespace impl {
struct FacilitiesImpl;
}

/// The process-wide services, from initialize to terminate.
class ORV_UTILS_API Facilities : public Singleton<Facilities> {
public:
    static void create();
    static void destroy();
    static Facilities& instance();
    static bool isSet();

    AbstractLogger& getLogger();
    const AbstractLogger& getLogger() const;
    /// The logger is not owned and must outlive its use.
    void setLogger(AbstractLogger& logger);
    /// Back to the default logger (errors to the error stream, the rest to the output stream).
    void clearLogger();

    /// The process's type registry, filled with the base and start-up types by initialize.
    TypeManager& getTypeManager();
    const TypeManager& getTypeManager() const;
    /// The process-wide string table (seed 7687).
    StringTable& getStringTable();
    const StringTable& getStringTable() const;
    RandomManager& getRandomNumberGenerator();
    const RandomManager& getRandomNumberGenerator() const;

    Facilities(const Facilities&) = delete;
    Facilities& operator=(const Facilities&) = delete;

private:
    Facilities();
    ~Facilities();

    impl::FacilitiesImpl* impl_;
};

} // namespace utils
} // namespace orv

#endif
