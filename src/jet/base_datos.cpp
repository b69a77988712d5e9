#include "jet/base_datos.h"

#include <cerrno>
#include <filesystem>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

#include "jet/catalogo.h"
#include "jet/nucleo.h"
#include "jet/plano.h"

namespace quimo::jet {

namespace {

Result<std::shared_ptr<Nucleo>> HacerNucleo(std::unique_ptr<Almacen> almacen, Modo modo) {
    QUIMO_TRY_VOID(ComprobarCabecera(*almacen));
    return std::make_shared<Nucleo>(std::move(almacen), modo);
}

Error SoloLectura(const Nucleo& nucleo) {
    return {Error::Codigo::NoSoportado,
            "El archivo " + nucleo.almacen->Ruta() + " se abrió solo para lectura."};
}

}  // namespace

Result<BaseDatos> BaseDatos::Abrir(const std::string& ruta, Modo modo) {
    const auto acceso =
        modo == Modo::Escritura ? Almacen::Acceso::Escritura : Almacen::Acceso::Lectura;
    QUIMO_TRY(auto almacen, Almacen::DeArchivo(ruta, acceso));
    QUIMO_TRY(auto nucleo, HacerNucleo(std::move(almacen), modo));
    return BaseDatos(std::move(nucleo));
}

Result<BaseDatos> BaseDatos::AbrirImagen(std::vector<std::uint8_t> imagen, Modo modo) {
    QUIMO_TRY(auto almacen, Almacen::DeImagen(std::move(imagen)));
    QUIMO_TRY(auto nucleo, HacerNucleo(std::move(almacen), modo));
    return BaseDatos(std::move(nucleo));
}

Result<BaseDatos> BaseDatos::Crear(const std::string& ruta) {
    std::error_code fallo;
    const auto absoluta = std::filesystem::absolute(ruta, fallo);
    if (fallo || std::filesystem::exists(std::filesystem::symlink_status(absoluta, fallo))) {
        return Error{Error::Codigo::Restriccion, "El archivo " + ruta + " ya existe."};
    }
    auto almacen = Almacen::Nuevo(absoluta.string());
    QUIMO_TRY_VOID(LlenarBaseNueva(*almacen));
    QUIMO_TRY(auto nucleo, HacerNucleo(std::move(almacen), Modo::Escritura));
    return BaseDatos(std::move(nucleo));
}

Result<std::vector<std::string>> BaseDatos::Tablas(Sistema sistema) const {
    QUIMO_TRY(const auto catalogo, LeerCatalogo(*nucleo_->almacen));
    std::vector<std::string> nombres;
    for (const ObjetoCatalogo& objeto : catalogo->objetos) {
        const bool listada = !objeto.EsDeSistema() || sistema == Sistema::Si;
        if (objeto.EsTabla() && listada) nombres.push_back(objeto.nombre);
    }
    return nombres;
}

Result<Tabla> BaseDatos::AbrirTabla(std::string_view nombre) const {
    QUIMO_TRY(auto esquema, BuscarEsquema(*nucleo_->almacen, nombre));
    return Tabla(nucleo_, std::move(esquema));
}

Result<Tabla> BaseDatos::CrearTabla(const DefTabla& definicion) {
    if (nucleo_->modo != Modo::Escritura) return SoloLectura(*nucleo_);
    QUIMO_TRY_VOID(ComprobarDefinicion(definicion));
    QUIMO_TRY_VOID(AgregarTabla(*nucleo_->almacen, definicion));
    return AbrirTabla(definicion.nombre);
}

Result<std::vector<Relacion>> BaseDatos::Relaciones() const {
    return LeerRelaciones(*nucleo_->almacen);
}

Result<OrdenTexto> BaseDatos::OrdenDeTexto() const {
    QUIMO_TRY(const PaginaLeida cabecera, nucleo_->almacen->Leer(0));
    return OrdenDeCabecera(*cabecera);
}

Result<void> BaseDatos::Guardar() {
    if (nucleo_->modo != Modo::Escritura) return SoloLectura(*nucleo_);
    if (nucleo_->almacen->SinArchivo()) {
        return Error{Error::Codigo::NoSoportado,
                     "La base de datos está solo en memoria: falta decir dónde guardarla."};
    }
    if (!HayCambios()) return {};
    return nucleo_->almacen->GuardarEn(Ruta());
}

Result<void> BaseDatos::GuardarComo(const std::string& ruta) {
    return nucleo_->almacen->GuardarEn(ruta);
}

Result<std::vector<std::uint8_t>> BaseDatos::Imagen() const { return nucleo_->almacen->Imagen(); }
const std::optional<Error>& BaseDatos::AvisoAlGuardar() const {
    return nucleo_->almacen->AvisoAlGuardar();
}
bool BaseDatos::HayCambios() const { return nucleo_->almacen->HayCambios(); }
const std::string& BaseDatos::Ruta() const { return nucleo_->almacen->Ruta(); }

EstadoLdb MirarLdb(const std::string& ruta_mdb) {
    const std::filesystem::path base(ruta_mdb);
    for (const char* extension : {".ldb", ".LDB"}) {
        std::filesystem::path ldb = base;
        ldb.replace_extension(extension);
        const base::Descriptor fd(::open(ldb.c_str(), O_RDONLY | O_CLOEXEC));
        if (fd.Fd() < 0 && (errno == ENOENT || errno == ENOTDIR)) continue;
        if (fd.Fd() < 0) return EstadoLdb::EnUso;
        struct flock candado {};
        candado.l_type = F_WRLCK;
        candado.l_whence = SEEK_SET;
        const bool sin_saber = ::fcntl(fd.Fd(), F_GETLK, &candado) != 0;
        return sin_saber || candado.l_type != F_UNLCK ? EstadoLdb::EnUso : EstadoLdb::SinUso;
    }
    return EstadoLdb::NoHay;
}

}  // namespace quimo::jet
