// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/listdifference.h"

#include <QHash>

#include <cstddef>
#include <unordered_map>

namespace {

using Entries = std::vector<const Connection*>;

struct HashOfAll
{
    std::size_t operator()(const Connection* entry) const
    {
        return qHashMulti(0, entry->ConnectionName, entry->DeviceType, entry->ConnectionType, entry->DeviceAddress,
                          entry->DriverAddress, entry->LinkSpeed, entry->TimeoutSeconds, entry->Selected,
                          entry->Subsystem);
    }
};

struct EqualInAll
{
    bool operator()(const Connection* one, const Connection* other) const
    {
        return *one == *other && one->Selected == other->Selected;
    }
};

/// Returns the entries of `list` without those that have an equal one in `other`. Each of these is used once.
Entries WithoutEqual(const std::vector<Connection>& list, const std::vector<Connection>& other)
{
    std::unordered_map<const Connection*, int, HashOfAll, EqualInAll> counts;
    for (const Connection& entry : other)
        ++counts[&entry];
    Entries rest;
    for (const Connection& entry : list)
        if (const auto equal = counts.find(&entry); equal == counts.end() || equal->second-- <= 0)
            rest.push_back(&entry);
    return rest;
}

/// Splits the names of `list` into those that have the same name in `other`, each of which is used once, and the rest.
struct Names
{
    Names(const Entries& list, const Entries& other)
    {
        QHash<QString, int> counts;
        for (const Connection* entry : other)
            ++counts[entry->ConnectionName];
        for (const Connection* entry : list)
            (counts[entry->ConnectionName]-- > 0 ? shared : own).append(entry->ConnectionName);
    }

    QStringList shared;
    QStringList own;
};

} // namespace

ListDifference Compare(const std::vector<Connection>& before, const std::vector<Connection>& after)
{
    const Entries old = WithoutEqual(before, after);
    const Entries now = WithoutEqual(after, before);
    const Names names(now, old);
    return {names.own, Names(old, now).own, names.shared};
}
