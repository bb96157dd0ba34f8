#include "browsersweep/home/CurrentUserDirectoryProvider.h"

namespace browsersweep {
namespace {

std::filesystem::path firstOrFallback(const FileManager& fileManager, SearchPathDirectory directory,
                                      const char* fallback) {
    const auto answers = fileManager.directories(directory);
    return answers.empty() ? fileManager.homeDirectory() / fallback : answers.front();
}

}  // namespace

CurrentUserDirectoryProvider::~CurrentUserDirectoryProvider() = default;

std::filesystem::path FileManagerDirectoryProvider::applicationSupportDirectory() const {
    return firstOrFallback(*fileManager_, SearchPathDirectory::applicationSupport,
                           "Library/Application Support/");
}

std::filesystem::path FileManagerDirectoryProvider::cachesDirectory() const {
    return firstOrFallback(*fileManager_, SearchPathDirectory::caches, "Library/Caches/");
}

std::filesystem::path FileManagerDirectoryProvider::libraryDirectory() const {
    return firstOrFallback(*fileManager_, SearchPathDirectory::library, "Library/");
}

}  // namespace browsersweep
