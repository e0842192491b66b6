#include "tests/host/errorsto.h"

#include <QDir>

#include <string>

#include <windows.h>

ErrorsTo::ErrorsTo(const QString& file)
{
    const std::wstring name = QDir::toNativeSeparators(file).toStdWString();
    const HANDLE handle = CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_Former = reinterpret_cast<qintptr>(GetStdHandle(STD_ERROR_HANDLE));
    m_File = reinterpret_cast<qintptr>(handle);
    SetStdHandle(STD_ERROR_HANDLE, handle);
}

ErrorsTo::~ErrorsTo()
{
    SetStdHandle(STD_ERROR_HANDLE, reinterpret_cast<HANDLE>(m_Former));
    CloseHandle(reinterpret_cast<HANDLE>(m_File));
}
