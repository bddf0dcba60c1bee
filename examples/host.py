#!/usr/bin/env python3
"""A first host, in Python: shows the "ETM Control" dialog for a chip that it makes up, and prints what
the module sends to it. usage: host.py MODULE HELPER     HELPER is the library KVETMHostHelper"""
import os
import sys
from ctypes import CDLL, CFUNCTYPE, addressof, c_size_t, c_void_p, create_string_buffer

from orn import call, make, put, text

REPORT = b"""ETM protocol version: 3\nETM architecture version: 1.3\nNumber of data comparators: 2
Number of address comparator pairs: 4\nNumber of memory map decoders: 8\nNumber of counters: 2
Number of external inputs: 4\nNumber of external outputs: 1\nSequencer present: yes
FIFOFULL logic present: yes\nNormal format supported: yes\nHalf-rate clocking supported: yes
Full-rate clocking supported: no\nMultiplexed  format  supported: no
Demultiplexed format supported: no\n\0"""
VALUES = {0x1000004: 0x30194824, 0x1000014: 0x2A, 5: 0x8088, 0: 0, 1: 524288, 2: 262144}
BOARD = {b"BoardFile": b"/none"}

def command(_, words, stream):
    print(words.decode())
    if stream:
        helper.orn_stream_write(c_void_p(stream), REPORT, c_size_t(len(REPORT)))

LINES = {0: text(b"ETM PC = all"), 1: text(b"ETM PORTSIZE = 16")}
OBJECTS = (
    make(b"IOrnAPI"), make(b"IOrnXTrace"), make(b"IOrnEmu"), make(b"IOrnTraceClient", ("btt", False)),
    make(b"IOrnVETMTrace", ("ptp", command), ("pu", text(b"Example emulator, buffer of 2 MB")),
         ("up", lambda _, detail: 0 * put(detail, bytes(4))), ("bu", False),
         ("buu", lambda _, id, value: VALUES.update({id: value}) or not print(f"value {id} = 0x{value:X}")),
         ("bup", lambda _, id, value: id in VALUES and put(value, VALUES[id].to_bytes(4, sys.byteorder))),
         ("pu", lambda _, index: LINES.get(index))),
    make(b"IOrnXTraceClient", ("bt", False),
         ("bttt", lambda _, section, key, value: BOARD.update({key: value}) or not print(key, value)),
         ("bttip", lambda _, section, key, size, buffer: put(buffer, BOARD[key] + b"\0"))))
path, helper = os.path.realpath(sys.argv[1]), CDLL(os.path.realpath(sys.argv[2]))
module = CFUNCTYPE(c_void_p)(("OrnDLL", CDLL(path)))()
call(module, 11, "-t", path.encode())
call(module, 13, "-p", OBJECTS[0][1])
control = call(module, 9, "pi", 0)
for name, this in OBJECTS:
    call(control, 10, "itp", name, this)
error = create_string_buffer(260)
if not (call(control, 18, "bu", 0) and call(control, 19, "b")):
    call(control, 21, "-pi", addressof(error), 260)
for name, this in OBJECTS:
    call(control, 11, "it", name)
call(module, 10, "-ip", 0, control)
call(module, 13, "-p", None)
sys.exit(error.value.decode() or None)
