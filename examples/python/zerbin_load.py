#!/usr/bin/env python3
"""Prints the blocks of a project as `zerbin load` does, through libzerbin.so.1 and ctypes.

    python3 zerbin_load.py PROJECT [LIBRARY]

LIBRARY is the shared library to load; by default the system's libzerbin.so.1.
"""
import ctypes
import sys

ZERBIN_OK = 0


def load(path):
    lib = ctypes.CDLL(path)
    lib.ZerbinVersion.restype = ctypes.c_int
    lib.ZerbinLastError.restype = ctypes.c_char_p
    lib.ZerbinProjectLoad.argtypes = [ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p)]
    lib.ZerbinProjectFree.argtypes = [ctypes.c_void_p]
    lib.ZerbinProjectFree.restype = None
    lib.ZerbinProjectCount.argtypes = [ctypes.c_void_p]
    lib.ZerbinProjectCount.restype = ctypes.c_size_t
    lib.ZerbinProjectBlock.argtypes = [ctypes.c_void_p, ctypes.c_size_t]
    lib.ZerbinProjectBlock.restype = ctypes.c_void_p
    text_out = [ctypes.c_char_p, ctypes.c_size_t, ctypes.POINTER(ctypes.c_size_t)]
    lib.ZerbinBlockUserName.argtypes = [ctypes.c_void_p] + text_out
    lib.ZerbinBlockType.argtypes = [ctypes.c_void_p] + text_out
    lib.ZerbinBlockImage.argtypes = [ctypes.c_void_p, ctypes.c_int] + text_out
    return lib


class ZerbinError(Exception):
    pass


def text(lib, call, *args):
    """A text handed out snprintf-like: ask for the length, then read it whole."""
    length = ctypes.c_size_t(0)
    if call(*args, None, 0, ctypes.byref(length)) != ZERBIN_OK:
        raise ZerbinError(lib.ZerbinLastError().decode())
    buffer = ctypes.create_string_buffer(length.value + 1)
    if call(*args, buffer, len(buffer), ctypes.byref(length)) != ZERBIN_OK:
        raise ZerbinError(lib.ZerbinLastError().decode())
    return buffer.value.decode("utf-8")


def escaped(name):
    """One line for a name that may hold line breaks, as the command writes it."""
    for plain, escape in (("\\", "\\\\"), ("\t", "\\t"), ("\r", "\\r"), ("\n", "\\n")):
        name = name.replace(plain, escape)
    return name


def main(argv):
    if len(argv) not in (2, 3):
        print("usage: zerbin_load.py PROJECT [LIBRARY]", file=sys.stderr)
        return 1
    lib = load(argv[2] if len(argv) == 3 else "libzerbin.so.1")
    if lib.ZerbinVersion() // 10000 != 1:
        print("zerbin_load.py: error: libzerbin major version is not 1", file=sys.stderr)
        return 1
    project = ctypes.c_void_p()
    if lib.ZerbinProjectLoad(argv[1].encode(), ctypes.byref(project)) != ZERBIN_OK:
        print(f"zerbin_load.py: error: {lib.ZerbinLastError().decode()}", file=sys.stderr)
        return 1
    try:
        for index in range(lib.ZerbinProjectCount(project)):
            block = lib.ZerbinProjectBlock(project, index)
            print("\t".join((escaped(text(lib, lib.ZerbinBlockUserName, block)),
                             text(lib, lib.ZerbinBlockType, block),
                             text(lib, lib.ZerbinBlockImage, block, 0))))
    except ZerbinError as error:
        print(f"zerbin_load.py: error: {error}", file=sys.stderr)
        return 1
    finally:
        lib.ZerbinProjectFree(project)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
