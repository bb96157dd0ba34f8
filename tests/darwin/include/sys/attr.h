#pragma once

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#define ATTR_BIT_MAP_COUNT 5
#define ATTR_CMN_NAME 0x00000001U
#define ATTR_CMN_OBJTYPE 0x00000008U
#define ATTR_CMN_CRTIME 0x00000200U
#define ATTR_CMN_ERROR 0x20000000U
#define ATTR_CMN_RETURNED_ATTRS 0x80000000U
#define ATTR_FILE_DATALENGTH 0x00000200U

typedef uint32_t attrgroup_t;
typedef uint32_t fsobj_type_t;

struct attrlist {
    unsigned short bitmapcount;
    uint16_t reserved;
    attrgroup_t commonattr;
    attrgroup_t volattr;
    attrgroup_t dirattr;
    attrgroup_t fileattr;
    attrgroup_t forkattr;
};

struct attribute_set_t {
    attrgroup_t commonattr;
    attrgroup_t volattr;
    attrgroup_t dirattr;
    attrgroup_t fileattr;
    attrgroup_t forkattr;
};

struct attrreference_t {
    int32_t attr_dataoffset;
    uint32_t attr_length;
};

extern "C" int getattrlistbulk(int directory, void* wanted, void* buffer, size_t size,
                               uint64_t options);
