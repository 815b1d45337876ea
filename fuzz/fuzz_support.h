#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// One fuzz target per reader. Built with libFuzzer (the fuzz preset) each target is a fuzzer of
// its own; built into the unit tests (PXM_FUZZ_REPLAY) each registers itself so that the replay
// test can run its saved cases and truncated samples through it.
namespace pxm::fuzz {

using TargetFunction = int (*)(const uint8_t* data, size_t size);

struct Target {
  std::string name;                     // also the corpus folder: fuzz/corpus/<name>/
  TargetFunction function;
  std::vector<std::string> extensions;  // samples with these extensions feed it
};

std::vector<Target>& Targets();

struct Registrar {
  Registrar(const char* name, TargetFunction function, std::vector<std::string> extensions) {
    Targets().push_back({name, function, std::move(extensions)});
  }
};

// Hands the bytes, as a file with the given extension, to the format row's info handler, its
// listing handler and (for pictures of sane size) its reader into a store that keeps nothing
// beyond memory. Every answer must be a picture or an error code.
void FuzzFormat(const uint8_t* data, size_t size, const char* extension);

}  // namespace pxm::fuzz

#ifdef PXM_FUZZ_REPLAY
#define PXM_FUZZ_TARGET(name, ...)                                                  \
  static int PxmFuzz_##name(const uint8_t* data, size_t size);                       \
  static ::pxm::fuzz::Registrar pxmFuzzRegistrar_##name(#name, PxmFuzz_##name,       \
                                                        {__VA_ARGS__});              \
  static int PxmFuzz_##name(const uint8_t* data, size_t size)
#else
#define PXM_FUZZ_TARGET(name, ...) \
  extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
#endif
