#include "jet/almacen.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/check.h"

namespace quimo::jet {

namespace {

constexpr std::size_t kLimpiasMax = 2048;  // 8 MB of pages kept although the file has them
constexpr std::size_t kSobrantesMax = 64;

Error ErrorDeSistema(int numero, const std::string& que, const std::string& ruta) {
    Error::Codigo codigo = Error::Codigo::Archivo;
    if (numero == ENOENT || numero == ENOTDIR) codigo = Error::Codigo::NoEncontrado;
    return {codigo, que + " " + ruta + ".", std::strerror(numero)};
}

Error ErrorDeTamano(const std::string& ruta, std::uint64_t largo) {
    return {Error::Codigo::Formato, "El archivo " + ruta + " no es una base de datos: mide " +
                                        std::to_string(largo) + " bytes."};
}

}  // namespace

HuellaArchivo HuellaArchivo::De(const struct stat& datos) {
    const std::int64_t segundos = datos.st_mtim.tv_sec;
    return {datos.st_dev, datos.st_ino, segundos * 1000000000 + datos.st_mtim.tv_nsec};
}

Result<std::unique_ptr<Almacen>> Almacen::DeArchivo(const std::string& ruta, Acceso acceso) {
    std::unique_ptr<Almacen> almacen(new Almacen());
    std::error_code fallo;
    almacen->ruta_ = std::filesystem::canonical(ruta, fallo).string();
    if (fallo) return ErrorDeSistema(fallo.value(), "No se encuentra el archivo", ruta);
    const int banderas = acceso == Acceso::Escritura ? O_RDWR : O_RDONLY;
    almacen->archivo_ =
        base::Descriptor(::open(almacen->ruta_.c_str(), banderas | O_CLOEXEC | O_NONBLOCK));
    const int fd = almacen->archivo_.Fd();
    struct stat datos {};
    if (fd < 0 || ::fstat(fd, &datos) != 0) {
        return ErrorDeSistema(errno, "No se puede abrir el archivo", ruta);
    }
    if (!S_ISREG(datos.st_mode)) {
        return Error{Error::Codigo::Archivo, "No es un archivo: " + ruta + "."};
    }
    if (acceso == Acceso::Escritura && ::flock(fd, LOCK_EX | LOCK_NB) != 0 &&
        errno == EWOULDBLOCK) {
        return Error{Error::Codigo::Bloqueado,
                     "Otro programa tiene abierto el archivo " + ruta + "."};
    }
    const auto largo = static_cast<std::uint64_t>(datos.st_size);
    const std::uint64_t paginas = largo / kTamPagina;
    if (paginas == 0 || paginas > kPaginasMax) return ErrorDeTamano(ruta, largo);
    almacen->sobrante_ = static_cast<std::size_t>(largo % kTamPagina);
    almacen->huella_ = HuellaArchivo::De(datos);
    almacen->entradas_.resize(paginas);
    return almacen;
}

Result<std::unique_ptr<Almacen>> Almacen::DeImagen(std::vector<std::uint8_t> imagen) {
    std::unique_ptr<Almacen> almacen(new Almacen());
    almacen->ruta_ = "(en memoria)";
    const std::size_t paginas = imagen.size() / kTamPagina;
    if (paginas == 0 || paginas > kPaginasMax) return ErrorDeTamano(almacen->ruta_, imagen.size());
    almacen->sobrante_ = imagen.size() % kTamPagina;
    almacen->entradas_.resize(paginas);
    for (std::size_t i = 0; i < paginas; ++i) {
        Entrada& entrada = almacen->entradas_[i];
        entrada.pagina = std::make_shared<Pagina>();
        entrada.sucia = true;
        std::memcpy(entrada.pagina->data(), imagen.data() + i * kTamPagina, kTamPagina);
    }
    return almacen;
}

std::unique_ptr<Almacen> Almacen::Nuevo(const std::string& ruta) {
    std::unique_ptr<Almacen> almacen(new Almacen());
    almacen->ruta_ = ruta;
    almacen->debe_ser_nuevo_ = true;
    almacen->hay_cambios_ = true;
    return almacen;
}

Error Almacen::Danado(std::string_view que) const {
    return {Error::Codigo::Formato,
            "El archivo " + ruta_ + " está dañado: " + std::string(que) + "."};
}

Result<void> Almacen::LeerDeArchivo(std::uint32_t numero, std::uint8_t* destino) const {
    std::size_t leidos = 0;
    while (leidos < kTamPagina) {
        const ssize_t n = ::pread(archivo_.Fd(), destino + leidos, kTamPagina - leidos,
                                  static_cast<off_t>(numero) * static_cast<off_t>(kTamPagina) +
                                      static_cast<off_t>(leidos));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return ErrorDeSistema(errno, "No se puede leer el archivo", ruta_);
        if (n == 0) return Danado("falta la página " + std::to_string(numero));
        leidos += static_cast<std::size_t>(n);
    }
    return {};
}

Result<void> Almacen::Cargar(Entrada& entrada, std::uint32_t numero) {
    if (limpias_.size() >= kLimpiasMax) Desalojar();
    auto pagina = std::make_shared_for_overwrite<Pagina>();
    QUIMO_TRY_VOID(LeerDeArchivo(numero, pagina->data()));
    entrada.pagina = std::move(pagina);
    limpias_.push_back(numero);
    return {};
}

void Almacen::Desalojar() {
    for (std::size_t i = 0; i < kLimpiasMax / 8 && !limpias_.empty(); ++i) {
        const std::uint32_t numero = limpias_.front();
        limpias_.pop_front();
        if (numero < entradas_.size() && !entradas_[numero].sucia) entradas_[numero].pagina.reset();
    }
}

Result<PaginaLeida> Almacen::Leer(std::uint32_t numero) {
    if (numero >= entradas_.size()) {
        return Danado("se nombra la página " + std::to_string(numero) + " y solo hay " +
                      std::to_string(entradas_.size()));
    }
    Entrada& entrada = entradas_[numero];
    if (entrada.pagina == nullptr) QUIMO_TRY_VOID(Cargar(entrada, numero));
    return PaginaLeida(entrada.pagina);
}

Result<Pagina*> Almacen::Escribir(std::uint32_t numero) {
    QUIMO_CHECK(profundidad_ > 0);
    QUIMO_TRY(const PaginaLeida actual, Leer(numero));
    Entrada& entrada = entradas_[numero];
    if (entrada.salvada_en != transaccion_) {
        std::unique_ptr<Pagina> copia;
        if (sobrantes_.empty()) {
            copia = std::make_unique<Pagina>(*actual);
        } else {
            copia = std::move(sobrantes_.back());
            sobrantes_.pop_back();
            *copia = *actual;
        }
        anteriores_.push_back({numero, std::move(copia)});
        entrada.salvada_en = transaccion_;
    }
    entrada.sucia = true;
    hay_cambios_ = true;
    ++generacion_;
    return entrada.pagina.get();
}

Result<std::uint32_t> Almacen::Agregar() {
    QUIMO_CHECK(profundidad_ > 0);
    if (entradas_.size() >= kPaginasMax) {
        return Error{Error::Codigo::Interno, "El archivo " + ruta_ + " llegaría a más de 2 GiB."};
    }
    Entrada entrada;
    entrada.pagina = std::make_shared<Pagina>();
    entrada.sucia = true;
    entrada.salvada_en = transaccion_;  // undoing cuts it off
    entradas_.push_back(std::move(entrada));
    hay_cambios_ = true;
    ++generacion_;
    return static_cast<std::uint32_t>(entradas_.size() - 1);
}

void Almacen::Empezar() {
    if (profundidad_++ > 0) return;
    ++transaccion_;
    paginas_antes_ = Paginas();
    cambios_antes_ = hay_cambios_;
}

void Almacen::Terminar() {
    for (Anterior& anterior : anteriores_) {
        if (sobrantes_.size() < kSobrantesMax) sobrantes_.push_back(std::move(anterior.contenido));
    }
    anteriores_.clear();
}

void Almacen::Deshacer() {
    for (const Anterior& anterior : anteriores_) {
        *entradas_[anterior.numero].pagina = *anterior.contenido;
    }
    entradas_.resize(paginas_antes_);
    liberadas_.clear();
    pistas_.clear();
    catalogo_.reset();
    hay_cambios_ = cambios_antes_;
    ++generacion_;
    Terminar();
}

Transaccion::~Transaccion() {
    const bool externa = --almacen_.profundidad_ == 0;
    if (!externa) return;
    if (confirmada_) {
        almacen_.Terminar();
    } else {
        almacen_.Deshacer();
    }
}

}  // namespace quimo::jet
