/*
 * Skeleton of a drive service for Linux: a program that owns a camera's focus motor and answers to the library. The
 * motor here is only a timer; replace the functions under "The motor" by your camera's. docs/linux.md has the packets.
 *
 *   cc -std=c11 drive_service.c -o drive_service
 *   ./drive_service &  tesmor devices;  tesmor move 90
 */
#define _GNU_SOURCE /* accept4, struct ucred */
#include <poll.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <sys/un.h>
#include <unistd.h>

enum { UNIT = 0, REQUEST = 0x222059, RESET_ACK = 0x222035, MOVE = 0xD1, OPEN = 0xD2, CLOSE = 0xD3 };
enum { LISTENER, CLIENT, MOTOR };

/* The motor: MOTOR becomes readable when a move has ended. */

static int beginMove(int motor, unsigned steps, int reverse)
{
    const long nanoseconds = steps * 39062L + 1; /* 25600 steps a second */
    const struct itimerspec end = {.it_value = {nanoseconds / 1000000000, nanoseconds % 1000000000}};
    printf("%u steps %s\n", steps, reverse ? "in reverse" : "forward");
    return timerfd_settime(motor, 0, &end, NULL) == 0;
}

static void endMove(int motor)
{
    uint64_t expirations;
    if (read(motor, &expirations, sizeof expirations) < 0)
        perror("motor");
}

/* The link */

static int listenOn(unsigned unit)
{
    struct sockaddr_un address = {.sun_family = AF_UNIX}; /* sun_path[0] stays 0: an abstract name */
    const int nameLength = snprintf(address.sun_path + 1, sizeof address.sun_path - 1, "braskdrv-%u-1010", unit);
    const socklen_t length = (socklen_t)(offsetof(struct sockaddr_un, sun_path) + 1 + (size_t)nameLength);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (bind(listener, (struct sockaddr*)&address, length) || listen(listener, 4)) {
        perror("unit 0");
        exit(1);
    }
    return listener;
}

/* One client at a time, and only one that runs as root or as our own user. Returns the client from now on. */
static int acceptClient(int listener, int client)
{
    struct ucred peer;
    socklen_t length = sizeof peer;
    const int newClient = accept4(listener, NULL, NULL, SOCK_CLOEXEC);
    uint8_t byte;
    if (client >= 0 && recv(client, &byte, 1, MSG_PEEK | MSG_DONTWAIT) == 0) { /* the first one has gone meanwhile */
        close(client);
        client = -1;
    }
    if (client < 0 && getsockopt(newClient, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
        (peer.uid == 0 || peer.uid == geteuid()))
        return newClient;
    close(newClient);
    return client;
}

/* One request of the library's focus drive. Whether it is accepted; a move that begins sets *moving. */
static int carryOut(const uint8_t* request, int motor, int* moving)
{
    const unsigned direction = request[6] | (unsigned)request[7] << 8;
    const unsigned steps = request[8] | (unsigned)request[9] << 8;
    if (request[4] == MOVE && !*moving)
        return *moving = beginMove(motor, steps, direction > 0x7FFF);
    return request[4] == OPEN || request[4] == CLOSE;
}

/* Takes one packet and replies to it. 0 when the client has gone. */
static int serve(int client, int motor, int* moving)
{
    uint8_t packet[32];
    uint8_t reply[5] = {0}; /* the control code, then whether the request was accepted */
    const ssize_t length = recv(client, packet, sizeof packet, 0);
    uint32_t code = 0;
    if (length <= 0)
        return 0;
    for (int i = 0; i < 4 && i < length; ++i) {
        reply[i] = packet[i];
        code |= (uint32_t)packet[i] << 8 * i;
    }
    if (code == REQUEST && length == 4 + 10)
        reply[4] = (uint8_t)carryOut(packet + 4, motor, moving);
    else if (code == RESET_ACK && length == 4 + 4)
        reply[4] = 1; /* acknowledgements that wait to be read are forgotten; here none ever waits */
    return send(client, reply, sizeof reply, MSG_NOSIGNAL) == sizeof reply;
}

int main(void)
{
    const int motor = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    struct pollfd fds[] = {{listenOn(UNIT), POLLIN, 0}, {-1, POLLIN, 0}, {motor, POLLIN, 0}};
    int* const client = &fds[CLIENT].fd; /* -1: none; poll passes it by */
    int moving = 0;
    int mover = -1; /* the client whose move it is */

    setvbuf(stdout, NULL, _IOLBF, 0);
    while (poll(fds, 3, -1) > 0) {
        if (fds[MOTOR].revents) {
            const uint8_t acknowledgement = 1;
            endMove(motor);
            moving = 0;
            if (mover >= 0)
                send(mover, &acknowledgement, 1, MSG_NOSIGNAL);
            mover = -1;
        }
        if (fds[CLIENT].revents) {
            const int movedBefore = moving;
            if (!serve(*client, motor, &moving)) {
                close(*client);
                *client = mover = -1; /* a move under way goes on; nobody waits for its end */
            } else if (moving && !movedBefore) {
                mover = *client;
            }
        }
        if (fds[LISTENER].revents) {
            const int before = *client;
            *client = acceptClient(fds[LISTENER].fd, before);
            if (*client != before)
                mover = -1;
        }
    }
    return 1;
}
