// A C++ host: brings the library up, reads an identifier, then takes the library down.
#include <orv/utils/OstreamLogger.h>
#include <orv/utils/System.h>
#include <orv/utils/Uuid.h>

#include <iostream>

int main()
{
    orv::utils::OstreamLogger logger(&std::cerr, &std::cout, &std::cout, nullptr);
    if (!orv::utils::initialize(&logger)) {
        return 1;
    }
    orv::utils::Uuid id;
    if (!id.set("0BA23F91-D30E-4574-B0ED-EE0AA81D00B9", &logger)) {
        return 1;
    }
    std::cout << "library id: " << id << std::endl;
    return orv::utils::terminate(&logger) ? 0 : 1;
}
