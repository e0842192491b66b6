#pragma once

/// While it lives, what Qt says about its own start is held back: when it starts, it is passed on as usual; when Qt
/// gives up because there is no display it can use, one line says so and the process ends with `ExitCode::Unusable`.
/// Nothing is open yet then that would have to be saved.
class QtStartMessages
{
public:
    QtStartMessages();
    ~QtStartMessages();

    QtStartMessages(const QtStartMessages&) = delete;
    QtStartMessages& operator=(const QtStartMessages&) = delete;
};

/// From now on leaves out what Qt says about the lack of a desktop and of a person's session, which headless use is
/// for.
void SuppressHeadlessWarnings();
