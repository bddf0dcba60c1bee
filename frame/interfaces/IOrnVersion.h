// IOrnVersion: which headers these are.
//
// What it is     The version of the SDK as numbers for #if, in C and in C++. CHANGELOG.md
//                tells what each version brought. The module that came with these headers
//                has the same one; which one a module has that was loaded, its control
//                component tells by GetComponentVersion: 107 for 1.7.
//
// The version of each interface stands in its own header as ORN_..._VERSION. It grows when
// operations join at the end of the interface; none is ever moved or removed.

#ifndef ORN_SDK_VERSION

#define ORN_SDK_VERSION_MAJOR 1
#define ORN_SDK_VERSION_MINOR 7
#define ORN_SDK_VERSION_PATCH 0
#define ORN_SDK_VERSION_TEXT "1.7.0"

/// To be compared: 10700 stands for 1.7.0.
#define ORN_SDK_VERSION                                                                            \
    (ORN_SDK_VERSION_MAJOR * 10000 + ORN_SDK_VERSION_MINOR * 100 + ORN_SDK_VERSION_PATCH)

#endif
