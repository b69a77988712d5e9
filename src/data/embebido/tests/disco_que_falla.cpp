#include "disco_que_falla.h"

#include <algorithm>
#include <memory>

namespace quimo::data {

namespace {

struct Estado {
    sqlite3_vfs* real = nullptr;
    sqlite3_vfs propio = {};
    Falla falla;
    int vistas = 0;
    int fallidas = 0;
};

Estado& Disco() {
    static Estado estado;
    return estado;
}

/// Whether this operation is one that fails now.
bool Toca(Operacion operacion) {
    Estado& disco = Disco();
    if (disco.falla.desde == 0 || disco.falla.operacion != operacion) return false;
    ++disco.vistas;
    const bool falla =
        disco.falla.siempre ? disco.vistas >= disco.falla.desde : disco.vistas == disco.falla.desde;
    if (falla) ++disco.fallidas;
    return falla;
}

int Codigo(int averia) { return Disco().falla.lleno ? SQLITE_FULL : averia; }

/// An open file: what the engine sees, and the system's own file behind it.
struct Archivo {
    sqlite3_file base;
    sqlite3_file* real = nullptr;
};

sqlite3_file* Real(sqlite3_file* archivo) { return reinterpret_cast<Archivo*>(archivo)->real; }

int Cerrar(sqlite3_file* f) { return Real(f)->pMethods->xClose(Real(f)); }
int Leer(sqlite3_file* f, void* datos, int cuantos, sqlite3_int64 desde) {
    if (Toca(Operacion::Lectura)) return SQLITE_IOERR_READ;
    return Real(f)->pMethods->xRead(Real(f), datos, cuantos, desde);
}
int Escribir(sqlite3_file* f, const void* datos, int cuantos, sqlite3_int64 desde) {
    if (Toca(Operacion::Escritura)) return Codigo(SQLITE_IOERR_WRITE);
    return Real(f)->pMethods->xWrite(Real(f), datos, cuantos, desde);
}
int Recortar(sqlite3_file* f, sqlite3_int64 tamano) {
    if (Toca(Operacion::Recorte)) return Codigo(SQLITE_IOERR_TRUNCATE);
    return Real(f)->pMethods->xTruncate(Real(f), tamano);
}
int Sincronizar(sqlite3_file* /*f*/, int /*como*/) {
    return Toca(Operacion::Sincronia) ? Codigo(SQLITE_IOERR_FSYNC) : SQLITE_OK;
}
int Tamano(sqlite3_file* f, sqlite3_int64* tamano) {
    return Real(f)->pMethods->xFileSize(Real(f), tamano);
}
int Cerrojo(sqlite3_file* f, int cual) { return Real(f)->pMethods->xLock(Real(f), cual); }
int Soltar(sqlite3_file* f, int cual) { return Real(f)->pMethods->xUnlock(Real(f), cual); }
int Reservado(sqlite3_file* f, int* si) {
    return Real(f)->pMethods->xCheckReservedLock(Real(f), si);
}
int Mandar(sqlite3_file* f, int que, void* con) {
    return Real(f)->pMethods->xFileControl(Real(f), que, con);
}
int Sector(sqlite3_file* f) { return Real(f)->pMethods->xSectorSize(Real(f)); }
int Rasgos(sqlite3_file* f) { return Real(f)->pMethods->xDeviceCharacteristics(Real(f)); }
int MapaComun(sqlite3_file* f, int region, int tamano, int crear, void volatile** donde) {
    return Real(f)->pMethods->xShmMap(Real(f), region, tamano, crear, donde);
}
int CerrojoComun(sqlite3_file* f, int desde, int cuantos, int como) {
    if ((como & SQLITE_SHM_LOCK) != 0 && Toca(Operacion::Cerrojo)) return SQLITE_IOERR_SHMLOCK;
    return Real(f)->pMethods->xShmLock(Real(f), desde, cuantos, como);
}
void BarreraComun(sqlite3_file* f) { Real(f)->pMethods->xShmBarrier(Real(f)); }
int QuitarComun(sqlite3_file* f, int borrar) {
    return Real(f)->pMethods->xShmUnmap(Real(f), borrar);
}
// Nothing is read through memory maps, so that every page is a read that can fail.
int Traer(sqlite3_file* /*f*/, sqlite3_int64 /*desde*/, int /*cuantos*/, void** donde) {
    *donde = nullptr;
    return SQLITE_OK;
}
int Devolver(sqlite3_file* /*f*/, sqlite3_int64 /*desde*/, void* /*pagina*/) { return SQLITE_OK; }

constexpr sqlite3_io_methods kMetodos = {
    3,           Cerrar,    Leer,    Escribir, Recortar, Sincronizar, Tamano,       Cerrojo,
    Soltar,      Reservado, Mandar,  Sector,   Rasgos,   MapaComun,   CerrojoComun, BarreraComun,
    QuitarComun, Traer,     Devolver};

int Abrir(sqlite3_vfs* /*vfs*/, const char* nombre, sqlite3_file* f, int como, int* quedo) {
    f->pMethods = nullptr;
    if (Toca(Operacion::Apertura)) return SQLITE_CANTOPEN;
    auto* archivo = reinterpret_cast<Archivo*>(f);
    archivo->real = reinterpret_cast<sqlite3_file*>(archivo + 1);
    archivo->real->pMethods = nullptr;
    sqlite3_vfs* real = Disco().real;
    const int codigo = real->xOpen(real, nombre, archivo->real, como, quedo);
    if (archivo->real->pMethods != nullptr) f->pMethods = &kMetodos;
    return codigo;
}

}  // namespace

DiscoQueFalla::DiscoQueFalla() {
    Estado& disco = Disco();
    sqlite3_initialize();
    disco.real = sqlite3_vfs_find(nullptr);
    disco.propio = *disco.real;
    disco.propio.zName = "quimo-disco-que-falla";
    disco.propio.szOsFile = static_cast<int>(sizeof(Archivo)) + disco.real->szOsFile;
    disco.propio.xOpen = Abrir;
    disco.propio.pNext = nullptr;
    sqlite3_vfs_register(&disco.propio, 1);
    Desarmar();
}

DiscoQueFalla::~DiscoQueFalla() {
    sqlite3_vfs_unregister(&Disco().propio);
    sqlite3_vfs_register(Disco().real, 1);
}

void DiscoQueFalla::Armar(const Falla& falla) {
    Disco().falla = falla;
    Disco().vistas = 0;
    Disco().fallidas = 0;
}

int DiscoQueFalla::Fallidas() const { return Disco().fallidas; }

}  // namespace quimo::data
