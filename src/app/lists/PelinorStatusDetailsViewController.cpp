#include "app/lists/PelinorStatusDetailsViewController.h"

#include "foundation/KRMainThreadObject.h"

std::shared_ptr<TwitterStream> PelinorStatusDetailsViewController::stream()
{
    if (!m_stream) {
        m_stream = KRMakeMainThreadObject<TwitterConversationStream>(account()->context().tables);
        m_stream->setAccount(account());
        m_stream->setBaseStatus(m_status);
    }
    return m_stream;
}
