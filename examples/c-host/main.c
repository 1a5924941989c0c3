/* zerbin-c-host: a host written in C that uses blocks through libzerbin.so.1 alone.
 *
 *     zerbin-c-host PROJECT
 *
 * Reads the project with the block library installed with the library and prints a line
 * "USERNAME<TAB>TYPE<TAB>IMAGE" for each block: the lines `zerbin load PROJECT` prints. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "zerbin/zerbin.h"

/* One of the block's texts; the three below share this shape. */
typedef int (*TextReader)(ZerbinBlock* block, char* buffer, size_t size, size_t* length);

static int ReadUserName(ZerbinBlock* block, char* buffer, size_t size, size_t* length) {
    return ZerbinBlockUserName(block, buffer, size, length);
}

static int ReadType(ZerbinBlock* block, char* buffer, size_t size, size_t* length) {
    return ZerbinBlockType(block, buffer, size, length);
}

static int ReadImage(ZerbinBlock* block, char* buffer, size_t size, size_t* length) {
    return ZerbinBlockImage(block, 0, buffer, size, length);
}

/* The text in *buffer, grown until it fits; NULL when the library or the memory failed. */
static const char* Read(TextReader read, ZerbinBlock* block, char** buffer, size_t* size) {
    size_t length = 0;
    while (read(block, *buffer, *size, &length) == ZERBIN_OK) {
        char* larger;
        if (length < *size) {
            return *buffer;
        }
        larger = (char*)realloc(*buffer, length + 1);
        if (larger == NULL) {
            return NULL;
        }
        *buffer = larger;
        *size = length + 1;
    }
    return NULL;
}

/* One line for a name that may hold line breaks, as the command writes it. */
static void PutEscaped(const char* text) {
    for (; *text != '\0'; ++text) {
        switch (*text) {
            case '\\':
                fputs("\\\\", stdout);
                break;
            case '\t':
                fputs("\\t", stdout);
                break;
            case '\r':
                fputs("\\r", stdout);
                break;
            case '\n':
                fputs("\\n", stdout);
                break;
            default:
                putchar(*text);
        }
    }
}

static int Fail(const char* what) {
    fprintf(stderr, "zerbin-c-host: error: %s: %s\n", what, ZerbinLastError());
    return EXIT_FAILURE;
}

int main(int argc, char** argv) {
    ZerbinProject* project = NULL;
    char* text = NULL;
    size_t size = 0;
    size_t i;
    int status = EXIT_SUCCESS;

    if (argc != 2) {
        fputs("usage: zerbin-c-host PROJECT\n", stderr);
        return EXIT_FAILURE;
    }
    /* Built against 1.x: any 1.y at least as new as the header will do. */
    if (ZerbinVersion() / 10000 != ZERBIN_VERSION_MAJOR ||
        ZerbinVersion() < ZERBIN_HEADER_VERSION) {
        fprintf(stderr, "zerbin-c-host: error: libzerbin %d is too old\n", ZerbinVersion());
        return EXIT_FAILURE;
    }
    if (ZerbinProjectLoad(argv[1], &project) != ZERBIN_OK) {
        return Fail(argv[1]);
    }
    for (i = 0; i < ZerbinProjectCount(project) && status == EXIT_SUCCESS; ++i) {
        ZerbinBlock* block = ZerbinProjectBlock(project, i);
        const char* name = Read(ReadUserName, block, &text, &size);
        if (name == NULL) {
            status = Fail("user name");
            break;
        }
        PutEscaped(name);
        if (Read(ReadType, block, &text, &size) == NULL) {
            status = Fail("type");
            break;
        }
        printf("\t%s\t", text);
        if (Read(ReadImage, block, &text, &size) == NULL) {
            status = Fail("image");
            break;
        }
        printf("%s\n", text);
    }
    free(text);
    ZerbinProjectFree(project);
    return status;
}
