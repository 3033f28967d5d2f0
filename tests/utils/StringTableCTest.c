/* The string table seen from a C host. The case returns null when it passes, otherwise the
   expectation that failed; StringTableTest.cpp runs it. */
#include <orv/utils/c/StringTable.h>

#include <stdio.h>
#include <string.h>

/* Keeps the count of errors in the first byte and the last one as "caption|message" after it. */
static void recordError(void* context, const orv_ErrorType* error, const char* file, unsigned int line,
                        const char* message)
{
    char* record = (char*)context;
    (void)file;
    (void)line;
    ++record[0];
    snprintf(record + 1, 255, "%s|%s", error->caption, message);
}

#define C_EXPECT(condition)                                                                                            \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            orv_destroyStringTable(table);                                                                             \
            return #condition;                                                                                         \
        }                                                                                                              \
    } while (0)

const char* orv_test_stringTableFromC(void)
{
    char record[256] = "";
    /* The table only reports errors, so the other levels need no functions. */
    orv_Logger logger = {record, NULL, NULL, NULL, NULL, NULL, NULL, recordError};
    orv_StringTable* table = orv_createStringTable(7687);
    unsigned long long hash;
    if (table == NULL) {
        return "orv_createStringTable(7687) != NULL";
    }

    hash = orv_stringTable_add(table, "hello world!", 11);
    C_EXPECT(hash == 0x089476a5e0d3edd7ull); /* "hello world" with seed 7687 */
    C_EXPECT(orv_stringTable_hash(table, "hello world", 11) == hash);
    C_EXPECT(strcmp(orv_stringTable_retrieve(table, hash, NULL), "hello world") == 0);

    C_EXPECT(orv_stringTable_addAndCheck(table, "hello world", 11, &logger) == hash);
    C_EXPECT(orv_stringTable_check(table, "hello world", 11, hash, &logger) != 0 && record[0] == 0);

    C_EXPECT(orv_stringTable_hashAndCheck(table, "ghost", 5, &logger) == 0);
    C_EXPECT(orv_stringTable_check(table, "hello world", 11, hash + 1, &logger) == 0);
    C_EXPECT(record[0] == 2);
    C_EXPECT(strcmp(record + 1, "invalid configuration|\"hello world\" is not registered with the table.") == 0);

    orv_destroyStringTable(table);
    return NULL;
}
