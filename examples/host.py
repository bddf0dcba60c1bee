#!/usr/bin/env python3
"""A first host, in Python: loads the module, shows the "ETM Control" dialog for a chip that it makes
up, and prints what the module sends to the chip. Slots and ids are the numbers of the headers.

usage: host.py MODULE HELPER       HELPER is the library KVETMHostHelper
"""
import os
import sys
from ctypes import *

REPORT = b"""ETM protocol version: 3\nETM architecture version: 1.3\nNumber of counters: 2
Number of address comparator pairs: 4\nNumber of data comparators: 2\nSequencer present: yes
Number of memory map decoders: 8\nNumber of external inputs: 4\nNumber of external outputs: 1
FIFOFULL logic present: yes\nNormal format supported: yes\nHalf-rate clocking supported: yes
Full-rate clocking supported: no\nMultiplexed  format  supported: no
Demultiplexed format supported: no\n\0"""
values = {0x1000004: 0x30194824, 0x1000014: 0x2A, 5: 0x8088, 0: 0, 1: 524288, 2: 262144}
settings = {b"BoardFile": b"/none\0"}
kinds = {"p": c_void_p, "t": c_char_p, "i": c_int32, "u": c_uint32, "b": c_uint8, "-": None}
kept = []  # what the module looks at and Python must not free

def operation(types):  # what it returns, the object, what stands behind that
    return CFUNCTYPE(kinds[types[0]], c_void_p, *(kinds[kind] for kind in types[1:]))

def text(words):
    return cast(words, c_void_p).value

def make(name, *operations):  # an object is a pointer to its table; six slots are those of all objects
    root = (("p", lambda _: text(name)), ("i", lambda _: 111), ("p", lambda _: text(b"ExampleHost")),
            ("i", lambda _: 100), ("pt", lambda *_: None), ("-p", lambda *_: None))
    slots = [operation(types)(function) for types, function in root + operations]
    table = (c_void_p * len(slots))(*(cast(slot, c_void_p) for slot in slots))
    kept.extend((slots, table, c_void_p(addressof(table))))
    return addressof(kept[-1])

def call(this, slot, types, *arguments):
    return operation(types)(cast(this, POINTER(POINTER(c_void_p)))[0][slot])(this, *arguments)

def command(_, words, stream):
    print(words.decode())
    if stream:
        helper.orn_stream_write(c_void_p(stream), REPORT, c_size_t(len(REPORT)))

objects = {
    b"IOrnAPI": make(b"IOrnAPI"),
    b"IOrnVETMTrace": make(
        b"IOrnVETMTrace", ("ptp", command), ("pu", lambda *_: text(b"Example emulator, buffer of 2 MB")),
        ("up", lambda _, detail: 0 * memset(detail, 0, 4)), ("bu", lambda *_: False),
        ("buu", lambda _, id, value: values.update({id: value}) or not print(f"value {id} = {value:#x}")),
        ("bup", lambda _, id, place: id in values and bool(memmove(place, byref(c_uint32(values[id])), 4))),
        ("pu", lambda _, index: text(b"ETM PC = all") if index == 0 else None)),
    b"IOrnXTraceClient": make(
        b"IOrnXTraceClient", ("bt", lambda *_: False),
        ("bttt", lambda _, section, key, value: settings.update({key: value + b"\0"}) or not print(key, value)),
        ("bttip", lambda _, section, key, size, buffer: bool(memmove(buffer, settings[key], len(settings[key])))))}
path, helper = os.path.realpath(sys.argv[1]), CDLL(os.path.realpath(sys.argv[2]))
module = CFUNCTYPE(c_void_p)(("OrnDLL", CDLL(path)))()
call(module, 11, "-t", path.encode())
call(module, 13, "-p", objects[b"IOrnAPI"])
control = call(module, 9, "pi", 0)
for name, this in objects.items():
    call(control, 10, "itp", name, this)
error = create_string_buffer(260)
if not (call(control, 18, "bu", 0) and call(control, 19, "b")):
    call(control, 21, "-pi", addressof(error), 260)
for name in objects:
    call(control, 11, "it", name)
call(module, 10, "-ip", 0, control)
call(module, 13, "-p", None)
sys.exit(error.value.decode() or None)
