#include "hulmar_testing.h"

#include "hulmar_p.h"

namespace hulmar::testing {

MessageCapture::MessageCapture()
{
    detail::activeCapture = this;
}

MessageCapture::~MessageCapture()
{
    if (detail::activeCapture == this)
        detail::activeCapture = nullptr;
}

std::vector<std::string> MessageCapture::texts() const
{
    std::vector<std::string> result;
    result.reserve(m_messages.size());
    for (const CapturedMessage &message : m_messages)
        result.push_back(message.text);
    return result;
}

FakeProbes::FakeProbes()
{
    detail::activeProbes = this;
}

FakeProbes::~FakeProbes()
{
    if (detail::activeProbes == this)
        detail::activeProbes = nullptr;
}

} // namespace hulmar::testing
