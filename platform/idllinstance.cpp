// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/idllinstance.h"

// The parameter type is part of the contract between host and plug-in.
// NOLINTNEXTLINE(modernize-pass-by-value)
IDllInstance::IDllInstance(const QString& name)
    : m_sName(name)
{
}

IDllInstance::~IDllInstance() = default;

bool IDllInstance::IsAvailable()
{
    return true;
}

void IDllInstance::Notify()
{
}

void IDllInstance::SaveSettings()
{
}
