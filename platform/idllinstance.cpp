#include "platform/idllinstance.h"

IDllInstance::IDllInstance(const QString& name)
    : m_sName(name)
{
}

IDllInstance::~IDllInstance() = default;

bool IDllInstance::IsAvailable()
{
    return true;
}

void IDllInstance::Notify() {}

void IDllInstance::SaveSettings() {}
