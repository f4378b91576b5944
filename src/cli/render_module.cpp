#include "cli/render_module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <string_view>

namespace vexa {

namespace {

std::string programFolder() {
  std::array<char, PATH_MAX> path;
  const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
  if (length <= 0) return ".";
  const std::string_view program(path.data(), static_cast<std::size_t>(length));
  return std::string(program.substr(0, program.rfind('/')));
}

// Beside the program, as it is built, or where it is installed.
std::string modulePath() {
  const std::string folder = programFolder();
  for (const std::string& place : {folder + '/', folder + "/" VEXA_MODULE_FOLDER "/"}) {
    std::string path = place + renderModuleName;
    if (::access(path.c_str(), F_OK) == 0) return path;
  }
  return {};
}

constexpr std::string_view otherWay = "; or write .svg or .emf, which need no module";

}  // namespace

OpenPicture* findRenderModule(std::string& problem) {
  const std::string path = modulePath();
  if (path.empty()) {
    problem = "PNG and PDF need the module " + std::string(renderModuleName) +
              ", which is neither beside vexa nor in its library folder; install it";
    problem += otherWay;
    return nullptr;
  }
  // Never closed: the library behind it keeps threads and exit handlers.
  void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const entry = module ? ::dlsym(module, renderModuleEntry) : nullptr;
  if (entry) return reinterpret_cast<OpenPicture*>(entry);
  const char* const reason = module ? nullptr : ::dlerror();
  problem = "the module for PNG and PDF cannot be used: " +
            std::string(reason ? reason : "it belongs to another version of vexa") +
            "; install Qt 6 (package libqt6gui6) and the module again";
  problem += otherWay;
  return nullptr;
}

}  // namespace vexa
