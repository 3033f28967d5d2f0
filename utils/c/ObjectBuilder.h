/* The object builder seen from C: a table of the builder's events. Compiles as C99. */
#ifndef ORV_UTILS_C_OBJECTBUILDER_H
#define ORV_UTILS_C_OBJECTBUILDER_H

#include <orv/utils/c/Types.h>

ORV_EXTERN_C_BEGIN

/* Every event answers non-zero to go on and zero to stop the producer at once. `ctx` is the
   table's own field, passed back as the first argument. A document is begin, one value, end; an
   object is beginObject, pairs of objectChild and value, endObject; an array is beginArray, pairs
   of arrayChild and value, endArray. Texts are `size` bytes, not zero-terminated, and stay the
   caller's: the builder copies what it keeps. */
typedef orv_bool (*orv_ObjectBuilder_eventFunction)(void* ctx);
typedef orv_bool (*orv_ObjectBuilder_booleanFunction)(void* ctx, orv_bool value);
typedef orv_bool (*orv_ObjectBuilder_integerFunction)(void* ctx, long long value);
typedef orv_bool (*orv_ObjectBuilder_realFunction)(void* ctx, double value);
typedef orv_bool (*orv_ObjectBuilder_textFunction)(void* ctx, const char* value, unsigned int size);

/* The table a C++ builder embeds and fills for its own lifetime; a C caller borrows it and owns
   nothing. A null `ctx` is a failed assertion and the event answers zero. */
typedef struct orv_ObjectBuilder {
    void* ctx;
    orv_ObjectBuilder_eventFunction begin;
    orv_ObjectBuilder_eventFunction end;
    orv_ObjectBuilder_eventFunction null;
    orv_ObjectBuilder_booleanFunction boolean;
    orv_ObjectBuilder_integerFunction integer;
    orv_ObjectBuilder_realFunction real;
    orv_ObjectBuilder_textFunction string;
    orv_ObjectBuilder_eventFunction beginObject;
    orv_ObjectBuilder_textFunction objectChild;
    orv_ObjectBuilder_eventFunction endObject;
    orv_ObjectBuilder_eventFunction beginArray;
    orv_ObjectBuilder_eventFunction arrayChild;
    orv_ObjectBuilder_eventFunction endArray;
} orv_ObjectBuilder;

ORV_EXTERN_C_END

#endif
