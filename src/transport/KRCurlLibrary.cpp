#include "transport/KRCurlLibrary.h"

#include <QtGlobal>

#include <cstring>
#include <dlfcn.h>

namespace {

// The name under which every libcurl 7.16 to 8 is installed: its interface has been the same since.
constexpr char libraryName[] = "libcurl.so.4";

class Opened {
public:
    Opened()
        : m_library(::dlopen(libraryName, RTLD_NOW | RTLD_LOCAL))
    {
        if (!m_library)
            qFatal("%s", ::dlerror());
    }

    template <typename Function>
    void find(Function& function, const char* name) const
    {
        void* const address = ::dlsym(m_library, name);
        if (!address)
            qFatal("%s", ::dlerror());
        function = reinterpret_cast<Function>(address);
    }
    [[nodiscard]] void* library() const { return m_library; }

private:
    void* m_library;
};

} // namespace

const KRCurlLibrary& KRCurlLibrary::shared()
{
    static const KRCurlLibrary library;
    return library;
}

KRCurlLibrary::KRCurlLibrary()
{
    const Opened library;
    library.find(easyInit, "curl_easy_init");
    library.find(easyCleanup, "curl_easy_cleanup");
    library.find(easyReset, "curl_easy_reset");
    library.find(easySetOption, "curl_easy_setopt");
    library.find(easyGetInfo, "curl_easy_getinfo");
    library.find(easyErrorText, "curl_easy_strerror");
    library.find(multiInit, "curl_multi_init");
    library.find(multiCleanup, "curl_multi_cleanup");
    library.find(multiSetOption, "curl_multi_setopt");
    library.find(multiAddHandle, "curl_multi_add_handle");
    library.find(multiRemoveHandle, "curl_multi_remove_handle");
    library.find(multiPerform, "curl_multi_perform");
    library.find(multiPoll, "curl_multi_poll");
    library.find(multiWakeUp, "curl_multi_wakeup");
    library.find(multiInfoRead, "curl_multi_info_read");
    library.find(listAppend, "curl_slist_append");
    library.find(listFree, "curl_slist_free_all");
    decltype(&curl_global_init) globalInit = nullptr;
    library.find(globalInit, "curl_global_init");
    globalInit(CURL_GLOBAL_DEFAULT);
    decltype(&curl_version) version = nullptr;
    library.find(version, "curl_version");
    m_library = library.library();
    m_usesOpenSSL = std::strstr(version(), " OpenSSL/") != nullptr;
}

void* KRCurlLibrary::OpenSSLFunction(const char* name) const
{
    // Looked for in the libraries that libcurl brought along, too.
    return m_usesOpenSSL ? ::dlsym(m_library, name) : nullptr;
}
