// An application as it is met in a long run: ends after a while, well or badly, crashes, or stays until it is killed.
// What it does is drawn from its process number. Plain C++, since it is started some hundred thousand times.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>
#include <thread>

#include <unistd.h>

int main()
{
    std::minstd_rand random(static_cast<unsigned>(getpid()));
    random.discard(10);
    const auto until = [&random](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(most));
    };

    // One in ten takes no notice of being asked to end.
    if (until(10) == 0)
        std::signal(SIGTERM, SIG_IGN);
    std::this_thread::sleep_for(std::chrono::milliseconds(until(3000)));
    switch (until(4)) {
    case 0:
        std::abort();
    case 1:
        return 1 + until(100);
    case 2:
        for (;;)
            pause();
    default:
        return 0;
    }
}
