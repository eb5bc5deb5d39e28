// Runs a fuzzer over files instead of inventing inputs, where the compiler has no libFuzzer: every
// argument is a file or a folder of files.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

static void replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                std::istreambuf_iterator<char>());
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize)
    LLVMFuzzerInitialize(&argc, &argv);
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      replay(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
      if (entry.is_regular_file())
        replay(entry.path());
  }
  return 0;
}
