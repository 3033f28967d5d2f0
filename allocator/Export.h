#ifndef ORV_ALLOCATOR_EXPORT_H
#define ORV_ALLOCATOR_EXPORT_H

#if defined(ORV_ALLOCATOR_BUILDING)
#define ORV_ALLOCATOR_API __attribute__((visibility("default")))
#else
#define ORV_ALLOCATOR_API
#endif

#endif
