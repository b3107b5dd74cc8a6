// Names for clang's thread-safety analysis; they vanish under other compilers.
#pragma once

#if defined(__clang__)
#define KAVREL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define KAVREL_THREAD_ANNOTATION(x)
#endif

#define KAVREL_CAPABILITY(name) KAVREL_THREAD_ANNOTATION(capability(name))
#define KAVREL_SCOPED_CAPABILITY KAVREL_THREAD_ANNOTATION(scoped_lockable)
#define KAVREL_GUARDED_BY(lock) KAVREL_THREAD_ANNOTATION(guarded_by(lock))
#define KAVREL_ACQUIRE(...) KAVREL_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KAVREL_RELEASE(...) KAVREL_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define KAVREL_REQUIRES(...) KAVREL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
