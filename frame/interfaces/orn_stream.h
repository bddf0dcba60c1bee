/* orn_stream.h: writing into the stream of "capability", from any language.
 *
 * What it is     IOrnVETMTrace::Command hands the host a std::ostream for the capability
 *                report: an object of the module's C++ library. A host that was built with
 *                that library writes into it. Any other, whether its C++ library is another
 *                one or it has none, hands the stream to this operation of the shared library
 *                KVETMHostHelper, which was built with the module's.
 * Who owns it    The module owns the stream; it is valid until Command returns.
 * Which thread   The one of Command. No state, no lock.
 */

#ifndef ORN_STREAM_H
#define ORN_STREAM_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Writes the `size` bytes at `bytes`. Returns 1 if the stream took them all; 0 if it is null or
 * has failed, or if `bytes` is null. No exception comes out. One byte, as all truth is.
 *
 * A capability report ends with a NUL, which is written as well: of a text its length + 1. */
uint8_t orn_stream_write(void* stream, const char* bytes, size_t size);

#ifdef __cplusplus
}
#endif

#endif
