#pragma once

#include <string>

namespace localservice {

// Two services in one folder would write over each other's settings. Whoever holds the lock has the folder
// alone, until it goes away or its process ends.
class FolderLock {
public:
    FolderLock() = default;
    ~FolderLock() { release(); }
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    [[nodiscard]] bool take(const std::string& directory);
    void release();

private:
    int m_descriptor = -1;
};

} // namespace localservice
