/* A producer written in C that sends its events through a builder's table. Each function returns
   null when every event was taken, otherwise the name of the first refused event;
   AbstractObjectBuilderTest.cpp runs them. */
#include <orv/utils/c/ObjectBuilder.h>

#include <stddef.h>

#define C_SEND(call)                                                                                                   \
    do {                                                                                                               \
        if (!(call)) {                                                                                                 \
            return #call;                                                                                              \
        }                                                                                                              \
    } while (0)

/* {"a":[1,0.5,true,null,"x\0y"],"b":""} with the empty text given as null. */
const char* orv_test_sendDocumentFromC(orv_ObjectBuilder* builder)
{
    void* ctx = builder->ctx;
    C_SEND(builder->begin(ctx));
    C_SEND(builder->beginObject(ctx));
    C_SEND(builder->objectChild(ctx, "ab", 1));
    C_SEND(builder->beginArray(ctx));
    C_SEND(builder->arrayChild(ctx));
    C_SEND(builder->integer(ctx, 1));
    C_SEND(builder->arrayChild(ctx));
    C_SEND(builder->real(ctx, 0.5));
    C_SEND(builder->arrayChild(ctx));
    C_SEND(builder->boolean(ctx, 1));
    C_SEND(builder->arrayChild(ctx));
    C_SEND(builder->null(ctx));
    C_SEND(builder->arrayChild(ctx));
    C_SEND(builder->string(ctx, "x\0y", 3));
    C_SEND(builder->endArray(ctx));
    C_SEND(builder->objectChild(ctx, "b", 1));
    C_SEND(builder->string(ctx, NULL, 0));
    C_SEND(builder->endObject(ctx));
    C_SEND(builder->end(ctx));
    return NULL;
}
