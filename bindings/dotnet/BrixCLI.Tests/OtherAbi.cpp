// A library with the name and the version functions of the C interface, but of another version: BrixCLI must refuse it.
#if defined(_WIN32)
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" {
EXPORTED int brix_abi_version();
EXPORTED const char* brix_version_string();

int brix_abi_version() { return 999; }
const char* brix_version_string() { return "9.8.7"; }
}
