// Takes the companion's place in a journey: it is there until it is ended.
#include <unistd.h>

int main()
{
    for (;;) {
        ::pause();
    }
}
