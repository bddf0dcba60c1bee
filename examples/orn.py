"""What a host in Python needs: objects of its own, and calls of the module's. Slots and ids are the
numbers of the headers; a type is that of a result, with those of what stands behind the object:
p pointer, t text, i and u numbers of 32 bits, b one byte of truth, - nothing."""
from ctypes import *

KINDS = {"p": c_void_p, "t": c_char_p, "i": c_int32, "u": c_uint32, "b": c_uint8, "-": None}
KEPT = []  # what the module looks at and Python must not free

def text(words):
    KEPT.append(c_char_p(words))
    return cast(KEPT[-1], c_void_p).value

def function(types):  # of the result, and of what stands behind the object
    return CFUNCTYPE(KINDS[types[0]], c_void_p, *(KINDS[kind] for kind in types[1:]))

def make(name, *slots):  # an object is a pointer to its table, whose first six slots all objects have
    root = (("p", text(name)), ("i", 111), ("p", text(b"ExampleHost")), ("i", 100), ("pt", 0), ("-p", None))
    table = [function(types)(act if callable(act) else lambda *_, answer=act: answer)
             for types, act in root + slots]
    KEPT.extend((table, (c_void_p * len(table))(*(cast(slot, c_void_p) for slot in table))))
    KEPT.append(c_void_p(addressof(KEPT[-1])))
    return name, addressof(KEPT[-1])

def call(this, slot, types, *arguments):
    return function(types)(cast(this, POINTER(POINTER(c_void_p)))[0][slot])(this, *arguments)

def put(place, words):  # where the module wants to have them
    return memmove(place, words, len(words)) == place
