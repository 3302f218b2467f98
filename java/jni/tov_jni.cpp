// The native half of the Java package org.tov: each function copies its
// arguments out of the JVM, calls the C interface (tov/tov_c.h) and copies the
// answer back, so no JNI reference and no C string outlives the call. Texts
// cross as arrays of real UTF-8 bytes: JNI's own string functions speak
// "modified UTF-8", which differs from UTF-8 for NUL and for characters
// outside the Basic Multilingual Plane.
#include <jni.h>

#include <cstdint>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <string>

#include "tov/tov_c.h"

namespace {

struct AnswerDeleter {
    void operator()(char* text) const noexcept { tov_string_free(text); }
};
using AnswerText = std::unique_ptr<char, AnswerDeleter>;

tov_engine* engineAt(jlong address) noexcept {
    // Java keeps the engine as its address in a long; this is the way back.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<tov_engine*>(static_cast<std::intptr_t>(address));
}

// Raises a Java exception unless one is pending already, which then stays the
// one the caller sees. The caller returns at once either way.
void throwJava(JNIEnv* env, const char* className, const char* message) noexcept {
    if (env->ExceptionCheck() == JNI_TRUE) {
        return;
    }
    jclass type = env->FindClass(className);
    if (type != nullptr) {
        env->ThrowNew(type, message);
        env->DeleteLocalRef(type);
    }
}

// Runs `body`, turning any C++ exception into a Java one, so that none
// unwinds into the JVM; `failed` is returned then.
template <typename Result, typename Body>
Result guarded(JNIEnv* env, Result failed, Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        throwJava(env, "java/lang/OutOfMemoryError", "tov's JNI glue ran out of memory");
    } catch (const std::exception& error) {
        throwJava(env, "java/lang/IllegalStateException", error.what());
    } catch (...) {
        throwJava(env, "java/lang/IllegalStateException", "unknown error in tov's JNI glue");
    }
    return failed;
}

// The bytes of a Java array as a C string. Copies the region rather than
// pinning the array, so there is nothing to release. False with a Java
// exception pending when there is no array or the copy failed.
bool copyBytes(JNIEnv* env, jbyteArray array, std::string& text) {
    if (array == nullptr) {
        throwJava(env, "java/lang/NullPointerException", "no byte array given to tov's JNI glue");
        return false;
    }
    const jsize length = env->GetArrayLength(array);
    text.assign(static_cast<std::size_t>(length), '\0');
    env->GetByteArrayRegion(array, 0, length, reinterpret_cast<jbyte*>(text.data()));
    return env->ExceptionCheck() == JNI_FALSE;
}

// A new Java array of the text's bytes; null with a Java exception pending
// when the JVM cannot make it.
jbyteArray javaBytes(JNIEnv* env, const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > static_cast<std::size_t>(std::numeric_limits<jsize>::max())) {
        throwJava(env, "java/lang/OutOfMemoryError", "tov's answer is too long for a Java array");
        return nullptr;
    }
    const auto size = static_cast<jsize>(length);
    jbyteArray array = env->NewByteArray(size);
    if (array != nullptr) {
        env->SetByteArrayRegion(array, 0, size, reinterpret_cast<const jbyte*>(text));
    }
    return array;
}

}  // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_org_tov_NativeCalls_engineNew(JNIEnv* /*env*/, jclass /*type*/) {
    return static_cast<jlong>(reinterpret_cast<std::intptr_t>(tov_engine_new()));
}

JNIEXPORT void JNICALL Java_org_tov_NativeCalls_engineFree(JNIEnv* /*env*/, jclass /*type*/,
                                                           jlong engine) {
    tov_engine_free(engineAt(engine));
}

JNIEXPORT jbyteArray JNICALL Java_org_tov_NativeCalls_evaluate(JNIEnv* env, jclass /*type*/,
                                                               jlong engine, jbyteArray kind,
                                                               jbyteArray input,
                                                               jboolean inputIsPath) {
    return guarded(env, jbyteArray{nullptr}, [&]() -> jbyteArray {
        std::string kindText;
        std::string inputText;
        if (!copyBytes(env, kind, kindText) || !copyBytes(env, input, inputText)) {
            return nullptr;
        }
        const AnswerText answer(
            inputIsPath == JNI_TRUE
                ? tov_evaluate_file(engineAt(engine), kindText.c_str(), inputText.c_str())
                : tov_evaluate(engineAt(engine), kindText.c_str(), inputText.c_str()));
        // No answer at all means that memory ran out; the Java side says so.
        return answer == nullptr ? nullptr : javaBytes(env, answer.get());
    });
}

JNIEXPORT jint JNICALL Java_org_tov_NativeCalls_setLog(JNIEnv* env, jclass /*type*/, jlong engine,
                                                       jbyteArray where) {
    return guarded(env, jint{TOV_LOG_OUT_OF_MEMORY}, [&]() -> jint {
        std::string whereText;
        if (!copyBytes(env, where, whereText)) {
            return TOV_LOG_NULL_ARGUMENT;
        }
        return tov_set_log(engineAt(engine), whereText.c_str());
    });
}

JNIEXPORT jbyteArray JNICALL Java_org_tov_NativeCalls_version(JNIEnv* env, jclass /*type*/) {
    return javaBytes(env, tov_version());
}

}  // extern "C"
