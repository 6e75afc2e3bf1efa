// SPDX-License-Identifier: MIT

#include <unwind.h>

// For GNU's Objective-C runtime, clang gives every function of an Objective-C++ source an exception
// personality that does not handle C++ exceptions; on a Mac one personality handles both. This definition
// replaces it for the objects of the test program.

extern "C" {

_Unwind_Reason_Code __gxx_personality_v0(int version, _Unwind_Action actions,
                                         _Unwind_Exception_Class exceptionClass, _Unwind_Exception* exception,
                                         _Unwind_Context* context);

__attribute__((visibility("hidden"))) _Unwind_Reason_Code
__gnu_objc_personality_v0(int version, _Unwind_Action actions, _Unwind_Exception_Class exceptionClass,
                          _Unwind_Exception* exception, _Unwind_Context* context) {
    return __gxx_personality_v0(version, actions, exceptionClass, exception, context);
}
}
