#include "browsersweep/home/Home.h"

namespace browsersweep {

Home Home::current(std::shared_ptr<OperationControl> control) {
    return control ? FileManager::controlledBy(std::move(control)) : FileManager::defaultManager();
}

Home Home::at(std::filesystem::path folder, std::shared_ptr<OperationControl> control) {
    return FileManager::forHome(std::move(folder), std::move(control));
}

Home::Home(std::shared_ptr<const FileManager> fileManager)
    : fileManager_(std::move(fileManager)),
      directoryProvider_(std::make_shared<FileManagerDirectoryProvider>(fileManager_)),
      services_(fileManager_->servesCurrentUser() ? SystemServices::current()
                                                  : SystemServices::isolated()) {}

Home::Home(std::shared_ptr<const FileManager> fileManager,
           std::shared_ptr<const CurrentUserDirectoryProvider> directoryProvider)
    : fileManager_(std::move(fileManager)),
      directoryProvider_(std::move(directoryProvider)),
      services_(SystemServices::isolated()) {}

Home Home::withServices(SystemServices services) const {
    Home home = *this;
    home.services_ = std::move(services);
    return home;
}

}  // namespace browsersweep
