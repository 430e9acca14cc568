/* Counts the pictures a program hands to the screen, for the desktop
 * measurements. Preloaded into the game (LD_PRELOAD), it stands in front of
 * SDL's presenting calls and adds one to a counter in a small shared file
 * (named by QV_PRESENT_COUNTER) before passing each call on, so the measuring
 * script can read frames per second from outside without the game's help. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

static volatile uint64_t* counter;

static void count_present(void)
{
    if (!counter) {
        const char* path = getenv("QV_PRESENT_COUNTER");
        int fd = path ? open(path, O_RDWR) : -1;
        if (fd < 0)
            return;
        void* map = mmap(NULL, sizeof(uint64_t), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        close(fd);
        if (map == MAP_FAILED)
            return;
        counter = map;
    }
    __atomic_add_fetch(counter, 1, __ATOMIC_RELAXED);
}

#define PASS_ON(name, params, args)                                  \
    int name params                                                  \
    {                                                                \
        static int(*real) params;                                    \
        if (!real)                                                   \
            *(void**)&real = dlsym(RTLD_NEXT, #name);                \
        count_present();                                             \
        return real ? real args : -1;                                \
    }

typedef struct SDL_Renderer SDL_Renderer;
typedef struct SDL_Window SDL_Window;
typedef struct SDL_Rect SDL_Rect;

void SDL_RenderPresent(SDL_Renderer* renderer)
{
    static void (*real)(SDL_Renderer*);
    if (!real)
        *(void**)&real = dlsym(RTLD_NEXT, "SDL_RenderPresent");
    count_present();
    if (real)
        real(renderer);
}

PASS_ON(SDL_UpdateWindowSurface, (SDL_Window* window), (window))
PASS_ON(SDL_UpdateWindowSurfaceRects, (SDL_Window* window, const SDL_Rect* rects, int count), (window, rects, count))

void SDL_GL_SwapWindow(SDL_Window* window)
{
    static void (*real)(SDL_Window*);
    if (!real)
        *(void**)&real = dlsym(RTLD_NEXT, "SDL_GL_SwapWindow");
    count_present();
    if (real)
        real(window);
}
