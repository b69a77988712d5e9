/* Preloaded under a program in tests: counts what it does to the files below one folder and, at a
 * chosen call, lets it fail or ends the program. Everything else passes through untouched.
 *
 * From the environment:
 *   INYECTOR_RAIZ      the folder; without it nothing happens
 *   INYECTOR_REGISTRO  a file that gets one line for each counted call: number, kind, path
 *   INYECTOR_SIN       files whose path ends so are left alone
 *   INYECTOR_SOMBRA    a folder that gets a copy of each file when it is made durable, by inode: what a
 *                      power cut would leave
 *   INYECTOR_CLASE     kinds that count, with commas: abrir escribir sincronizar renombrar recortar
 *                      borrar carpeta cerrar mapear; empty: all
 *   INYECTOR_MODO      una (only call N fails), todas (N and all after it), mitad (write N takes half
 *                      of its bytes), antes and despues (SIGKILL before or after call N),
 *                      parar (SIGSTOP before call N)
 *   INYECTOR_N         which call, from 1
 *   INYECTOR_ERROR     the errno of a failure, as a number
 */
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

enum { kRutaMax = 4096, kFdMax = 65536 };

static char raiz[kRutaMax];
static size_t largo_raiz;
static char clases[256];
static char sin[64];
static char modo[16];
static char sombra[kRutaMax];
static long elegida;
static int error_elegido = EIO;
static int registro = -1;
static atomic_long cuenta;
static atomic_uchar seguido[kFdMax]; /* descriptors of files below the folder */

__attribute__((constructor)) static void Empezar(void) {
    const char* texto = getenv("INYECTOR_RAIZ");
    if (texto == NULL || realpath(texto, raiz) == NULL) return;
    largo_raiz = strlen(raiz);
    if ((texto = getenv("INYECTOR_CLASE")) != NULL) snprintf(clases, sizeof clases, ",%s,", texto);
    if ((texto = getenv("INYECTOR_SIN")) != NULL) snprintf(sin, sizeof sin, "%s", texto);
    if ((texto = getenv("INYECTOR_SOMBRA")) != NULL) snprintf(sombra, sizeof sombra, "%s", texto);
    if ((texto = getenv("INYECTOR_MODO")) != NULL) snprintf(modo, sizeof modo, "%s", texto);
    if ((texto = getenv("INYECTOR_N")) != NULL) elegida = atol(texto);
    if ((texto = getenv("INYECTOR_ERROR")) != NULL) error_elegido = atoi(texto);
    if ((texto = getenv("INYECTOR_REGISTRO")) != NULL) {
        registro = (int)syscall(SYS_openat, AT_FDCWD, texto,
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    }
}

/* The whole path of a name, whose last part need not exist. */
static int Completa(int carpeta, const char* nombre, char* ruta) {
    if (nombre[0] == '/') return snprintf(ruta, kRutaMax, "%s", nombre) < kRutaMax;
    char base[kRutaMax];
    if (carpeta == AT_FDCWD) {
        if (getcwd(base, sizeof base) == NULL) return 0;
    } else {
        char enlace[64];
        snprintf(enlace, sizeof enlace, "/proc/self/fd/%d", carpeta);
        const ssize_t bytes = readlink(enlace, base, sizeof base - 1);
        if (bytes < 0) return 0;
        base[bytes] = '\0';
    }
    return snprintf(ruta, kRutaMax, "%s/%s", base, nombre) < kRutaMax;
}

static int Dentro(const char* ruta) {
    const size_t largo = strlen(ruta);
    const size_t final = strlen(sin);
    if (final > 0 && largo >= final && strcmp(ruta + largo - final, sin) == 0) return 0;
    return largo_raiz > 0 && strncmp(ruta, raiz, largo_raiz) == 0 &&
           (ruta[largo_raiz] == '/' || ruta[largo_raiz] == '\0');
}

static int Seguido(int fd) { return fd >= 0 && fd < kFdMax && seguido[fd]; }

static const char* RutaDe(int fd, char* ruta) {
    char enlace[64];
    snprintf(enlace, sizeof enlace, "/proc/self/fd/%d", fd);
    const ssize_t bytes = readlink(enlace, ruta, kRutaMax - 1);
    ruta[bytes < 0 ? 0 : bytes] = '\0';
    return ruta;
}

enum { kPasar, kFallar, kPartir, kMatarDespues };

/* Counts a call and tells what becomes of it. */
static int Contar(const char* clase, const char* ruta, const char* otra) {
    char buscada[32];
    snprintf(buscada, sizeof buscada, ",%s,", clase);
    if (clases[0] != '\0' && clases[1] != ',' && strstr(clases, buscada) == NULL) return kPasar;
    const long numero = atomic_fetch_add(&cuenta, 1) + 1;
    if (registro >= 0) {
        char linea[2 * kRutaMax + 64];
        const int bytes = snprintf(linea, sizeof linea, "%ld\t%s\t%s\t%s\n", numero, clase, ruta, otra);
        if (bytes > 0) syscall(SYS_write, registro, linea, (size_t)bytes);
    }
    if (numero < elegida || elegida == 0) return kPasar;
    if (strcmp(modo, "todas") == 0) return kFallar;
    if (numero != elegida) return kPasar;
    if (strcmp(modo, "una") == 0) return kFallar;
    if (strcmp(modo, "mitad") == 0) return kPartir;
    if (strcmp(modo, "despues") == 0) return kMatarDespues;
    if (strcmp(modo, "antes") == 0) syscall(SYS_kill, getpid(), SIGKILL);
    if (strcmp(modo, "parar") == 0) syscall(SYS_kill, getpid(), SIGSTOP);
    return kPasar;
}

#define FALLAR_CON(valor)       \
    do {                        \
        errno = error_elegido;  \
        return (valor);         \
    } while (0)

#define TERMINAR_TRAS(suerte)                                                    \
    do {                                                                         \
        if ((suerte) == kMatarDespues) syscall(SYS_kill, getpid(), SIGKILL);     \
    } while (0)

static int Abrir(int carpeta, const char* nombre, int banderas, mode_t permisos) {
    char ruta[kRutaMax];
    const int dentro = Completa(carpeta, nombre, ruta) && Dentro(ruta);
    const int escribe = (banderas & O_ACCMODE) != O_RDONLY || (banderas & (O_CREAT | O_TRUNC)) != 0;
    int suerte = kPasar;
    if (dentro && escribe) suerte = Contar("abrir", ruta, "");
    if (suerte == kFallar) FALLAR_CON(-1);
    const int fd = (int)syscall(SYS_openat, carpeta, nombre, banderas, permisos);
    if (fd >= 0 && fd < kFdMax) seguido[fd] = (unsigned char)dentro;
    TERMINAR_TRAS(suerte);
    return fd;
}

#define ABRIR(nombre, carpeta_declarada, carpeta, mas)                          \
    int nombre(carpeta_declarada const char* archivo, int banderas, ...) {      \
        mode_t permisos = 0;                                                    \
        if ((banderas & (O_CREAT | O_TMPFILE)) != 0) {                          \
            va_list lista;                                                      \
            va_start(lista, banderas);                                          \
            permisos = va_arg(lista, mode_t);                                   \
            va_end(lista);                                                      \
        }                                                                       \
        return Abrir(carpeta, archivo, banderas | (mas), permisos);             \
    }

#define NADA
ABRIR(open, NADA, AT_FDCWD, 0)
ABRIR(open64, NADA, AT_FDCWD, O_LARGEFILE)
#define CARPETA int carpeta,
ABRIR(openat, CARPETA, carpeta, 0)
ABRIR(openat64, CARPETA, carpeta, O_LARGEFILE)

int creat(const char* archivo, mode_t permisos) {
    return Abrir(AT_FDCWD, archivo, O_WRONLY | O_CREAT | O_TRUNC, permisos);
}

static int SuerteDe(const char* clase, int fd) {
    if (!Seguido(fd)) return kPasar;
    char ruta[kRutaMax];
    return Contar(clase, RutaDe(fd, ruta), "");
}

/* Half of a write's bytes, never none. */
static size_t Mitad(int suerte, size_t bytes) {
    return suerte == kPartir && bytes > 1 ? bytes / 2 : bytes;
}

ssize_t write(int fd, const void* datos, size_t bytes) {
    const int suerte = SuerteDe("escribir", fd);
    if (suerte == kFallar) FALLAR_CON(-1);
    const ssize_t escritos = syscall(SYS_write, fd, datos, Mitad(suerte, bytes));
    TERMINAR_TRAS(suerte);
    return escritos;
}

#define PWRITE(nombre, tipo)                                                                \
    ssize_t nombre(int fd, const void* datos, size_t bytes, tipo lugar) {                   \
        const int suerte = SuerteDe("escribir", fd);                                        \
        if (suerte == kFallar) FALLAR_CON(-1);                                              \
        const ssize_t escritos = syscall(SYS_pwrite64, fd, datos, Mitad(suerte, bytes), lugar); \
        TERMINAR_TRAS(suerte);                                                              \
        return escritos;                                                                    \
    }
PWRITE(pwrite, off_t)
PWRITE(pwrite64, off64_t)

ssize_t writev(int fd, const struct iovec* partes, int cuantas) {
    const int suerte = SuerteDe("escribir", fd);
    if (suerte == kFallar) FALLAR_CON(-1);
    const ssize_t escritos = syscall(SYS_writev, fd, partes, cuantas);
    TERMINAR_TRAS(suerte);
    return escritos;
}

/* Keeps what is durable now. A copy that cannot be made leaves none: the file then counts as lost. */
static void Ensombrecer(int fd) {
    struct stat estado;
    char ruta[kRutaMax];
    if (sombra[0] == '\0' || !Seguido(fd) || fstat(fd, &estado) != 0 || !S_ISREG(estado.st_mode)) return;
    snprintf(ruta, sizeof ruta, "/proc/self/fd/%d", fd);
    const int de = (int)syscall(SYS_openat, AT_FDCWD, ruta, O_RDONLY | O_CLOEXEC, 0);
    if (snprintf(ruta, sizeof ruta, "%s/%lu", sombra, (unsigned long)estado.st_ino) >= kRutaMax) return;
    const int a = (int)syscall(SYS_openat, AT_FDCWD, ruta, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    char trozo[65536];
    ssize_t bytes;
    while ((bytes = read(de, trozo, sizeof trozo)) > 0) {
        if (syscall(SYS_write, a, trozo, (size_t)bytes) != bytes) {
            syscall(SYS_unlinkat, AT_FDCWD, ruta, 0);
            break;
        }
    }
    syscall(SYS_close, de);
    syscall(SYS_close, a);
}

#define SINCRONIZAR(nombre, llamada)                        \
    int nombre(int fd) {                                    \
        const int suerte = SuerteDe("sincronizar", fd);     \
        if (suerte == kFallar) FALLAR_CON(-1);              \
        const int hecho = (int)syscall(llamada, fd);        \
        if (hecho == 0) Ensombrecer(fd);                    \
        TERMINAR_TRAS(suerte);                              \
        return hecho;                                       \
    }
SINCRONIZAR(fsync, SYS_fsync)
SINCRONIZAR(fdatasync, SYS_fdatasync)

#define RECORTAR(nombre, tipo)                                    \
    int nombre(int fd, tipo bytes) {                              \
        const int suerte = SuerteDe("recortar", fd);              \
        if (suerte == kFallar) FALLAR_CON(-1);                    \
        const int hecho = (int)syscall(SYS_ftruncate, fd, bytes); \
        TERMINAR_TRAS(suerte);                                    \
        return hecho;                                             \
    }
RECORTAR(ftruncate, off_t)
RECORTAR(ftruncate64, off64_t)

int close(int fd) {
    /* A file that was only read closes without harm. */
    const int cuenta_este = Seguido(fd) && (fcntl(fd, F_GETFL) & O_ACCMODE) != O_RDONLY;
    const int suerte = cuenta_este ? SuerteDe("cerrar", fd) : kPasar;
    if (fd >= 0 && fd < kFdMax) seguido[fd] = 0;
    const int hecho = (int)syscall(SYS_close, fd);
    TERMINAR_TRAS(suerte);
    if (suerte == kFallar) FALLAR_CON(-1);
    return hecho;
}

static int SuerteDeNombres(const char* clase, int carpeta, const char* nombre, int otra_carpeta,
                           const char* otro) {
    char ruta[kRutaMax];
    char otra[kRutaMax] = "";
    if (!Completa(carpeta, nombre, ruta)) return kPasar;
    if (otro != NULL && !Completa(otra_carpeta, otro, otra)) return kPasar;
    return Dentro(ruta) || Dentro(otra) ? Contar(clase, ruta, otra) : kPasar;
}

static int Renombrar(int carpeta, const char* nombre, int otra, const char* nuevo, unsigned banderas) {
    const int suerte = SuerteDeNombres("renombrar", carpeta, nombre, otra, nuevo);
    if (suerte == kFallar) FALLAR_CON(-1);
    const int hecho = (int)syscall(SYS_renameat2, carpeta, nombre, otra, nuevo, banderas);
    TERMINAR_TRAS(suerte);
    return hecho;
}
int rename(const char* nombre, const char* nuevo) {
    return Renombrar(AT_FDCWD, nombre, AT_FDCWD, nuevo, 0);
}
int renameat(int carpeta, const char* nombre, int otra, const char* nuevo) {
    return Renombrar(carpeta, nombre, otra, nuevo, 0);
}
int renameat2(int carpeta, const char* nombre, int otra, const char* nuevo, unsigned banderas) {
    return Renombrar(carpeta, nombre, otra, nuevo, banderas);
}

int link(const char* nombre, const char* nuevo) {
    const int suerte = SuerteDeNombres("renombrar", AT_FDCWD, nombre, AT_FDCWD, nuevo);
    if (suerte == kFallar) FALLAR_CON(-1);
    const int hecho = (int)syscall(SYS_linkat, AT_FDCWD, nombre, AT_FDCWD, nuevo, 0);
    TERMINAR_TRAS(suerte);
    return hecho;
}

static int Borrar(int carpeta, const char* nombre, int banderas) {
    const int suerte = SuerteDeNombres("borrar", carpeta, nombre, 0, NULL);
    if (suerte == kFallar) FALLAR_CON(-1);
    const int hecho = (int)syscall(SYS_unlinkat, carpeta, nombre, banderas);
    TERMINAR_TRAS(suerte);
    return hecho;
}
int unlink(const char* nombre) { return Borrar(AT_FDCWD, nombre, 0); }
int unlinkat(int carpeta, const char* nombre, int banderas) {
    return Borrar(carpeta, nombre, banderas);
}
int remove(const char* nombre) {
    struct stat estado;
    const int es_carpeta = lstat(nombre, &estado) == 0 && S_ISDIR(estado.st_mode);
    return Borrar(AT_FDCWD, nombre, es_carpeta ? AT_REMOVEDIR : 0);
}

static int CrearCarpeta(int carpeta, const char* nombre, mode_t permisos) {
    const int suerte = SuerteDeNombres("carpeta", carpeta, nombre, 0, NULL);
    if (suerte == kFallar) FALLAR_CON(-1);
    const int hecho = (int)syscall(SYS_mkdirat, carpeta, nombre, permisos);
    TERMINAR_TRAS(suerte);
    return hecho;
}
int mkdir(const char* nombre, mode_t permisos) { return CrearCarpeta(AT_FDCWD, nombre, permisos); }
int mkdirat(int carpeta, const char* nombre, mode_t permisos) {
    return CrearCarpeta(carpeta, nombre, permisos);
}

static void* Mapear(void* donde, size_t bytes, int proteccion, int banderas, int fd, off64_t lugar) {
    const int suerte = fd >= 0 ? SuerteDe("mapear", fd) : kPasar;
    if (suerte == kFallar) FALLAR_CON(MAP_FAILED);
    void* const hecho = (void*)syscall(SYS_mmap, donde, bytes, proteccion, banderas, fd, lugar);
    TERMINAR_TRAS(suerte);
    return hecho;
}
void* mmap(void* donde, size_t bytes, int proteccion, int banderas, int fd, off_t lugar) {
    return Mapear(donde, bytes, proteccion, banderas, fd, lugar);
}
void* mmap64(void* donde, size_t bytes, int proteccion, int banderas, int fd, off64_t lugar) {
    return Mapear(donde, bytes, proteccion, banderas, fd, lugar);
}
