#pragma once

/// While it lives, this process can open nothing more: no file and no socket. What is open stays usable.
class NoMoreHandles
{
public:
    NoMoreHandles();
    ~NoMoreHandles();

    NoMoreHandles(const NoMoreHandles&) = delete;
    NoMoreHandles& operator=(const NoMoreHandles&) = delete;

private:
    unsigned long m_uFormerLimit = 0;
};
