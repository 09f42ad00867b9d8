#include "FolderLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace localservice {

bool FolderLock::take(const std::string& directory)
{
    release();
    m_descriptor = ::open((directory + "/lock").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
    if (m_descriptor >= 0 && ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0)
        return true;
    release();
    return false;
}

void FolderLock::release()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

} // namespace localservice
