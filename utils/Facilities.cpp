#include <orv/utils/Facilities.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/impl/FacilitiesImpl.h>

#include <iostream>

namespace orv {
namespace utils {
namespace impl {

FacilitiesImpl::FacilitiesImpl()
    : marker(0),
      logger(nullptr),
      defaultLogger(&std::cerr, &std::cout, &std::cout, &std::cout),
      typeManager(),
      stringTable(0x1e07),
      randomManager()
{
    marker = 1;
    logger = &defaultLogger;
}

} // namespace impl

Facilities::Facilities() : impl_(ORV_NEW(impl::FacilitiesImpl)()) {}

Facilities::~Facilities()
{
    ORV_DELETE(impl_);
}

void Facilities::create()
{
    setInstance(ORV_NEW(Facilities)());
}

void Facilities::destroy()
{
    Facilities* facilities = getInstancePointer();
    if (facilities == nullptr) {
        return;
    }
    // The destructor is private to the class, so the release form is spelled out here.
    facilities->~Facilities();
    allocator::Allocator::instance().deallocate(facilities);
    clearInstance();
}

Facilities& Facilities::instance()
{
    return Singleton<Facilities>::instance();
}

bool Facilities::isSet()
{
    return Singleton<Facilities>::isSet();
}

AbstractLogger& Facilities::getLogger()
{
    return *impl_->logger;
}

const AbstractLogger& Facilities::getLogger() const
{
    return *impl_->logger;
}

void Facilities::setLogger(AbstractLogger& logger)
{
    impl_->logger = &logger;
}

void Facilities::clearLogger()
{
    impl_->logger = &impl_->defaultLogger;
}

TypeManager& Facilities::getTypeManager()
{
    return impl_->typeManager;
}

const TypeManager& Facilities::getTypeManager() const
{
    return impl_->typeManager;
}

StringTable& Facilities::getStringTable()
{
    return impl_->stringTable;
}

const StringTable& Facilities::getStringTable() const
{
    return impl_->stringTable;
}

RandomManager& Facilities::getRandomNumberGenerator()
{
    return impl_->randomManager;
}

const RandomManager& Facilities::getRandomNumberGenerator() const
{
    return impl_->randomManager;
}

} // namespace utils
} // namespace orv
