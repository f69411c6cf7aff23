/* The floor of a listing: the driver requests the display rules need and
 * nothing else, through the same device node and driver as cvadm (run it
 * under the simulated host's preload), with one printf per row. What a
 * listing costs beyond this and cvadm's start-up is cvadm's own.
 *
 *   floor array | vlun | path      (the device: $CVADM_ROOT/dev/cvdrv)
 *
 * Request layouts are the driver's (docs/simulator.md). */
#include <fcntl.h>
#include <inttypes.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

enum { MAX_ARRAYS = 128, MAX_IDS = 16384, MAX_TPGS = 16 };

static int g_fd = -1;

struct frame {
    uint32_t result;
    uint32_t reserved;
    uint64_t payload;
};

static uint32_t u32(const uint8_t *p, size_t off)
{
    uint32_t v;
    memcpy(&v, p + off, sizeof v);
    return v;
}

static uint64_t u64(const uint8_t *p, size_t off)
{
    uint64_t v;
    memcpy(&v, p + off, sizeof v);
    return v;
}

static void put32(uint8_t *p, size_t off, uint32_t v) { memcpy(p + off, &v, sizeof v); }

/* One request; the process ends on a refusal (the floor has no error paths). */
static void request(uint32_t nr, uint32_t size, void *payload)
{
    struct frame f = {0xFFFFFFFFu, 0, (uint64_t)(uintptr_t)payload};
    unsigned long code = (2UL << 30) | ((unsigned long)size << 16) | (0x4DUL << 8) | nr;
    if (ioctl(g_fd, code, &f) != 0 || f.result != 1024) {
        fprintf(stderr, "floor: request %u failed (result %u)\n", nr, f.result);
        exit(1);
    }
}

/* An ID list: the input words, the capacity at capOff; returns the count. */
static uint32_t id_list(uint32_t nr, uint32_t size, uint8_t *buf, uint32_t cap, size_t capOff, size_t countOff)
{
    put32(buf, capOff, cap);
    request(nr, size, buf);
    uint32_t n = u32(buf, countOff);
    return n < cap ? n : cap;
}

static uint8_t g_ids[20 + 4 * MAX_IDS];
static uint8_t g_ids2[20 + 4 * MAX_IDS];

static uint32_t arrays(uint32_t *out)
{
    memset(g_ids, 0, 12);
    uint32_t n = id_list(0x0b, 16, g_ids, MAX_ARRAYS, 0, 8);
    for (uint32_t i = 0; i < n; ++i) {
        out[i] = u32(g_ids, 12 + 4 * i);
    }
    return n;
}

/* Controller names of one array, each asked once: "" when it has none. */
struct names {
    uint32_t array;
    char text[MAX_TPGS][17];
    int known[MAX_TPGS];
};

static const char *controller_name(struct names *n, uint32_t tpg)
{
    tpg %= MAX_TPGS;
    if (!n->known[tpg]) {
        uint8_t p[28] = {0};
        put32(p, 0, n->array);
        put32(p, 4, tpg);
        request(0x3e, 28, p);
        memcpy(n->text[tpg], p + 8, 17);
        n->text[tpg][16] = '\0';
        n->known[tpg] = 1;
    }
    return n->text[tpg];
}

static int floor_vlun(void)
{
    static uint32_t ids[MAX_ARRAYS];
    uint32_t na = arrays(ids);
    for (uint32_t a = 0; a < na; ++a) {
        memset(g_ids, 0, 20);
        put32(g_ids, 0, ids[a]);
        uint32_t nd = id_list(0x15, 24, g_ids, MAX_IDS, 8, 16);
        struct names names = {.array = ids[a]};
        for (uint32_t i = 0; i < nd; ++i) {
            uint8_t d[544] = {0};
            put32(d, 0, u32(g_ids, 20 + 4 * i));
            request(0x17, 544, d);
            const char *owner = controller_name(&names, u32(d, 8));
            uint8_t v[84] = {0};
            put32(v, 0, u32(d, 4));
            request(0x5f, 84, v);
            printf("%-6" PRIu32 " %-32.64s %-32.32s %14" PRIu64 " %-8s %-10.40s type %u\n", u32(d, 4),
                   (const char *)d + 48, (const char *)v + 4, u64(d, 40), owner[0] ? owner : "-",
                   (const char *)d + 460, v[58]);
        }
    }
    return 0;
}

static int floor_array(void)
{
    static uint32_t ids[MAX_ARRAYS];
    uint32_t na = arrays(ids);
    for (uint32_t a = 0; a < na; ++a) {
        uint8_t rec[444] = {0};
        put32(rec, 0, ids[a]);
        request(0x0c, 444, rec);
        memset(g_ids, 0, 20);
        put32(g_ids, 0, ids[a]);
        uint32_t luns = id_list(0x15, 24, g_ids, MAX_IDS, 8, 16);
        uint8_t t[12 + 4 * MAX_TPGS] = {0};
        put32(t, 0, ids[a]);
        uint32_t nt = id_list(0x3c, 16, t, MAX_TPGS, 4, 8);
        uint32_t paths = 0;
        for (uint32_t i = 0; i < nt; ++i) {
            uint8_t info[24 + 4 * 8] = {0};
            put32(info, 0, ids[a]);
            put32(info, 4, u32(t, 12 + 4 * i));
            uint32_t np = id_list(0x3d, 28, info, 8, 8, 16);
            for (uint32_t k = 0; k < np; ++k) {
                uint8_t p[1080] = {0};
                put32(p, 0, u32(info, 24 + 4 * k));
                request(0x2a, 1080, p);
                memset(g_ids2, 0, 20);
                put32(g_ids2, 0, u32(info, 24 + 4 * k));
                id_list(0x16, 24, g_ids2, MAX_IDS, 8, 16);
                paths += u32(p, 12) == 1;
            }
        }
        printf("%-6" PRIu32 " %-32.80s %-20.20s %6" PRIu32 " LUNs %3" PRIu32 " controllers %4" PRIu32 " paths up\n",
               ids[a], (const char *)rec + 4, (const char *)rec + 116, luns, nt, paths);
    }
    return 0;
}

static int floor_path(void)
{
    static uint32_t ids[MAX_ARRAYS];
    uint32_t na = arrays(ids);
    for (uint32_t a = 0; a < na; ++a) {
        memset(g_ids, 0, 16);
        put32(g_ids, 0, ids[a]);
        uint32_t np = id_list(0x29, 20, g_ids, MAX_IDS, 4, 12);
        struct names names = {.array = ids[a]};
        for (uint32_t i = 0; i < np; ++i) {
            uint8_t p[1080] = {0};
            put32(p, 0, u32(g_ids, 16 + 4 * i));
            request(0x2a, 1080, p);
            const char *tpg = controller_name(&names, u32(p, 8));
            printf("%-6" PRIu32 " %-24.80s %-8s %-24.241s %s %" PRIu32 " LUNs\n", u32(p, 0), (const char *)p + 96,
                   tpg[0] ? tpg : (const char *)p + 904, (const char *)p + 432,
                   u32(p, 12) == 1 ? "up  " : "down", u32(p, 32));
        }
    }
    return 0;
}

int main(int argc, char **argv)
{
    const char *root = getenv("CVADM_ROOT");
    char dev[4096];
    if (argc != 2 || root == NULL || snprintf(dev, sizeof dev, "%s/dev/cvdrv", root) >= (int)sizeof dev) {
        fprintf(stderr, "usage: CVADM_ROOT=DIR floor array|vlun|path\n");
        return 2;
    }
    g_fd = open(dev, O_RDWR | O_CLOEXEC);
    if (g_fd < 0) {
        perror(dev);
        return 1;
    }
    if (strcmp(argv[1], "vlun") == 0) {
        return floor_vlun();
    }
    if (strcmp(argv[1], "array") == 0) {
        return floor_array();
    }
    if (strcmp(argv[1], "path") == 0) {
        return floor_path();
    }
    fprintf(stderr, "floor: unknown listing %s\n", argv[1]);
    return 2;
}
