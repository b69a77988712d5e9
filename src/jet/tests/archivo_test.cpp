// What happens to files: refusals, saving, damage.

#include <algorithm>
#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "apoyo.h"

namespace quimo::jet::prueba {
namespace {

constexpr const char* kTerminal = "terminals/BARRA/Quimo_Terminal.mdb";

struct CasoCabecera {
    const char* por_que;
    std::size_t posicion;
    std::vector<std::uint8_t> bytes;  // put there; the file is cut there if empty
    Error::Codigo codigo;
    const char* palabra;  // to be found in the message
};

TEST(Abrir, RehusaPorSuNombreLoQueNoEsSuFormato) {
    const CasoCabecera casos[] = {
        {"Jet 3", 0x14, {0}, Error::Codigo::NoSoportado, "Jet 3"},
        {"posterior", 0x14, {2}, Error::Codigo::NoSoportado, "posterior"},
        {"accdb",
         4,
         {'S', 't', 'a', 'n', 'd', 'a', 'r', 'd', ' ', 'A', 'C', 'E', ' ', 'D', 'B'},
         Error::Codigo::NoSoportado,
         "accdb"},
        {"cifrado", 0x3E, {0xFF, 0xFF}, Error::Codigo::NoSoportado, "cifrado"},
        {"contraseña", 0x50, {0x12, 0x34}, Error::Codigo::NoSoportado, "contraseña"},
        {"otra cosa", 4, {'x'}, Error::Codigo::Formato, "no es una base de datos"},
        {"vacío", 0, {}, Error::Codigo::Formato, "0 bytes"},
        {"menos de una página", 4095, {}, Error::Codigo::Formato, "4095 bytes"},
        {"a media página", 40960 + 7, {}, Error::Codigo::Formato, "cortado"},
    };
    Carpeta carpeta;
    for (const CasoCabecera& caso : casos) {
        std::vector<std::uint8_t> bytes = LeerBytes(Datos(kTerminal));
        if (caso.bytes.empty()) bytes.resize(caso.posicion);
        std::copy(caso.bytes.begin(), caso.bytes.end(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(caso.posicion));
        const std::string ruta = carpeta / "malo.mdb";
        std::ofstream(ruta, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        for (const auto& base : {BaseDatos::Abrir(ruta), BaseDatos::AbrirImagen(bytes)}) {
            ASSERT_FALSE(base.has_value()) << caso.por_que;
            EXPECT_EQ(base.error().codigo, caso.codigo) << caso.por_que;
            EXPECT_NE(base.error().mensaje.find(caso.palabra), std::string::npos)
                << base.error().mensaje;
        }
    }
    EXPECT_EQ(BaseDatos::Abrir(carpeta / "nada.mdb").error().codigo, Error::Codigo::NoEncontrado);
    EXPECT_FALSE(BaseDatos::Abrir(carpeta / "").has_value());
}

TEST(Escribir, RehusaTablasDelSistemaYArchivosDeLectura) {
    const BaseDatos lectura = Exigir(BaseDatos::Abrir(Datos(kTerminal)));
    Tabla tabla = Exigir(lectura.AbrirTabla("Empleado"));
    EXPECT_EQ(tabla.Vaciar().error().codigo, Error::Codigo::NoSoportado);
    BaseDatos escritura = AbrirCopia(kTerminal);
    Tabla sistema = Exigir(escritura.AbrirTabla("MSysObjects"));
    EXPECT_EQ(sistema.Vaciar().error().codigo, Error::Codigo::NoSoportado);
}

TEST(Escribir, RehusaTablasConRelacionesDeAccess) {
    const auto carpeta = Muestras();
    if (!carpeta) GTEST_SKIP() << kSinMuestras;
    const BaseDatos base =
        Exigir(BaseDatos::AbrirImagen(LeerBytes(*carpeta / "indexTestV2000.mdb"), Modo::Escritura));
    Tabla relacionada = Exigir(base.AbrirTabla("Table1"));
    const auto error = relacionada.Vaciar();
    ASSERT_FALSE(error.has_value());
    EXPECT_EQ(error.error().codigo, Error::Codigo::NoSoportado);
    EXPECT_NE(error.error().mensaje.find("Table2Table1 (de Table1 a Table2)"), std::string::npos)
        << error.error().mensaje;
    EXPECT_EQ(relacionada.SeEscribe().error().mensaje, error.error().mensaje);
    for (const Relacion& r : Exigir(base.Relaciones())) {
        if (r.nombre != "Table3Table1") continue;
        EXPECT_EQ(r.tabla + ">" + r.referida, "Table1>Table3");
        ASSERT_EQ(r.columnas.size(), 1U);
        EXPECT_EQ(r.columnas[0], std::pair(std::string("otherfk2"), std::string("id")));
        EXPECT_TRUE(r.Exigida());
        return;
    }
    FAIL() << "sin Table3Table1";
}

/// Gives all text columns another sort order.
void CambiarOrden(std::vector<std::uint8_t>& bytes, OrdenTexto orden) {
    const std::vector<std::uint8_t> texto = {0x0A, 0x59, 0x06, 0x00, 0x00};
    for (auto p = bytes.begin();; ++p) {
        p = std::search(p, bytes.end(), texto.begin(), texto.end());
        if (p == bytes.end()) return;
        p[11] = static_cast<std::uint8_t>(orden.lcid);
        p[12] = static_cast<std::uint8_t>(orden.lcid >> 8);
        p[14] = static_cast<std::uint8_t>(orden.version);
    }
}

TEST(Escribir, LosOrdenesAjenosSeNombranAntesDeEscribir) {
    const std::pair<OrdenTexto, const char*> casos[] = {
        {{0x040A, 0}, "español tradicional (0x040A)"},
        {{0x0C0A, 0}, "español moderno (0x0C0A)"},
        {{0x0409, 1}, "General (0x0409), versión 1"},
        {{0x0407, 0}, "el orden 0x0407"},
    };
    EXPECT_EQ(Exigir(AbrirCopia(kTerminal).OrdenDeTexto()), (OrdenTexto{0x0409, 0}));
    Exigir(Exigir(AbrirCopia(kTerminal).AbrirTabla("Comanda")).SeEscribe());
    for (const auto& [orden, nombre] : casos) {
        std::vector<std::uint8_t> bytes = LeerBytes(Datos(kTerminal));
        CambiarOrden(bytes, orden);
        // The same order for the whole database; page 0 is masked, General is there in the clear.
        bytes[0x6E] ^= static_cast<std::uint8_t>(orden.lcid ^ 0x0409);
        bytes[0x6F] ^= static_cast<std::uint8_t>((orden.lcid ^ 0x0409) >> 8);
        bytes[0x71] ^= static_cast<std::uint8_t>(orden.version);
        const BaseDatos base = Exigir(BaseDatos::AbrirImagen(bytes));
        EXPECT_EQ(Exigir(base.OrdenDeTexto()), orden);
        const auto rehusada = Exigir(base.AbrirTabla("Comanda")).SeEscribe();
        ASSERT_FALSE(rehusada.has_value());
        EXPECT_EQ(rehusada.error().codigo, Error::Codigo::NoSoportado);
        EXPECT_NE(rehusada.error().mensaje.find(nombre), std::string::npos)
            << rehusada.error().mensaje;
        EXPECT_NE(rehusada.error().mensaje.find("Fecha_Trabajo"), std::string::npos);
    }
}

/// Texts in another sort order are read; keys made of them are not written.
TEST(Escribir, RehusaClavesEnOtroOrden) {
    std::vector<std::uint8_t> bytes = LeerBytes(Datos(kTerminal));
    CambiarOrden(bytes, {0x0C0A, 0});
    BaseDatos base = Exigir(BaseDatos::AbrirImagen(bytes, Modo::Escritura));
    EXPECT_TRUE(Volcar(base) == LeerTexto(Datos("terminals/BARRA/contents.json")));
    EXPECT_EQ(Hallazgos(base), "");
    Tabla con_clave_de_texto = Exigir(base.AbrirTabla("Comanda"));
    const auto rehusada = con_clave_de_texto.Vaciar();
    ASSERT_FALSE(rehusada.has_value());
    EXPECT_EQ(rehusada.error().codigo, Error::Codigo::NoSoportado);
    EXPECT_NE(rehusada.error().mensaje.find("Fecha_Trabajo"), std::string::npos);
    EXPECT_GT(Exigir(Exigir(base.AbrirTabla("Comanda")).Buscar("Fecha_Trabajo", {})).size(), 0U);
    Exigir(Exigir(base.AbrirTabla("Cortesia")).Vaciar());
    EXPECT_FALSE(
        base.CrearTabla({.nombre = "N", .columnas = {{.nombre = "A"}}, .indices = {}}).has_value());
}

TEST(Guardar, SustituyeElArchivoDeUnaVez) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    std::filesystem::permissions(ruta, std::filesystem::perms(0640));
    const BaseDatos vieja = Exigir(BaseDatos::Abrir(ruta));
    const std::string antes = Volcar(vieja);
    BaseDatos base = Exigir(BaseDatos::Abrir(ruta, Modo::Escritura));
    EXPECT_EQ(BaseDatos::Abrir(ruta, Modo::Escritura).error().codigo, Error::Codigo::Bloqueado);
    Tabla tabla = Exigir(base.AbrirTabla("Cortesia"));
    Exigir(tabla.Insertar(std::vector<Valor>{1, 2, base::Dinero::DeEntero(3)}));
    EXPECT_EQ(Volcar(Exigir(BaseDatos::Abrir(ruta))), antes);  // not before it is saved
    Exigir(base.Guardar());
    EXPECT_FALSE(base.HayCambios());
    EXPECT_EQ(carpeta.Archivos(), 1U);
    EXPECT_EQ(std::filesystem::status(ruta).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(Volcar(vieja), antes);  // who had it open goes on reading the old one
    const std::string despues = Volcar(base);
    EXPECT_NE(despues, antes);
    EXPECT_EQ(Volcar(Exigir(BaseDatos::Abrir(ruta))), despues);
    // And once more from what is open now.
    Exigir(tabla.Insertar(std::vector<Valor>{1, 3, base::Dinero::DeEntero(3)}));
    Exigir(base.Guardar());
    Exigir(base.GuardarComo(carpeta / "otra.mdb"));
    EXPECT_EQ(base.Ruta(), carpeta / "otra.mdb");
    EXPECT_EQ(Volcar(Exigir(BaseDatos::Abrir(ruta))), Volcar(base));
}

TEST(Guardar, NoPisaLoQueOtroHizoMientrasTanto) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    BaseDatos base = Exigir(BaseDatos::Abrir(ruta, Modo::Escritura));
    Exigir(Exigir(base.AbrirTabla("Cortesia")).Vaciar());
    std::filesystem::rename(ruta, carpeta / "apartada.mdb");
    EXPECT_EQ(base.Guardar().error().codigo, Error::Codigo::Bloqueado);
    std::filesystem::copy_file(Datos("terminals/Plantilla.mdb"), ruta);
    EXPECT_EQ(base.Guardar().error().codigo, Error::Codigo::Bloqueado);
    EXPECT_TRUE(LeerBytes(ruta) == LeerBytes(Datos("terminals/Plantilla.mdb")));
    EXPECT_EQ(BaseDatos::Crear(ruta).error().codigo, Error::Codigo::Restriccion);
    BaseDatos nueva = Exigir(BaseDatos::Crear(carpeta / "nueva.mdb"));
    std::filesystem::copy_file(ruta, carpeta / "nueva.mdb");
    EXPECT_EQ(nueva.Guardar().error().codigo, Error::Codigo::Restriccion);
    EXPECT_EQ(carpeta.Archivos(), 3U);
    BaseDatos memoria = AbrirCopia(kTerminal);
    EXPECT_FALSE(memoria.Guardar().has_value());
}

/// Another program's change within the same second, that leaves length and place alone.
TEST(Guardar, UnNanosegundoTambienEsUnCambio) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    const auto mover = [&ruta](long ns) {
        struct stat datos {};
        EXPECT_EQ(::stat(ruta.c_str(), &datos), 0);
        const timespec sello[] = {datos.st_atim, {datos.st_mtim.tv_sec, ns}};
        EXPECT_EQ(::utimensat(AT_FDCWD, ruta.c_str(), sello, 0), 0);
    };
    mover(500);
    BaseDatos base = Exigir(BaseDatos::Abrir(ruta, Modo::Escritura));
    Tabla tabla = Exigir(base.AbrirTabla("Cortesia"));
    Exigir(tabla.Vaciar());
    mover(501);
    EXPECT_EQ(base.Guardar().error().codigo, Error::Codigo::Bloqueado);
    mover(500);
    Exigir(base.Guardar());
    // The same for the file that was saved.
    Exigir(tabla.Insertar(std::vector<Valor>{1, 2, base::Dinero::DeEntero(3)}));
    struct stat datos {};
    ASSERT_EQ(::stat(ruta.c_str(), &datos), 0);
    mover(datos.st_mtim.tv_nsec == 7 ? 8 : 7);
    EXPECT_EQ(base.Guardar().error().codigo, Error::Codigo::Bloqueado);
}

TEST(Guardar, SiNoSePuedeElOriginalQuedaIgual) {
    Carpeta carpeta;
    const std::string ruta = carpeta / "t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    BaseDatos base = Exigir(BaseDatos::Abrir(ruta, Modo::Escritura));
    Exigir(Exigir(base.AbrirTabla("Cortesia")).Vaciar());
    rlimit limite{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limite), 0);
    const rlimit corto{100000, limite.rlim_max};
    const auto senal = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &corto), 0);
    const auto fallo = base.Guardar();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limite), 0);
    std::signal(SIGXFSZ, senal);
    ASSERT_FALSE(fallo.has_value());
    EXPECT_EQ(fallo.error().codigo, Error::Codigo::Archivo);
    EXPECT_TRUE(LeerBytes(ruta) == LeerBytes(Datos(kTerminal)));
    EXPECT_EQ(carpeta.Archivos(), 1U);
    Exigir(base.Guardar());  // nothing was lost
    EXPECT_FALSE(base.GuardarComo(carpeta / "no/hay/t.mdb").has_value());
}

TEST(Guardar, ConElDiscoLlenoLoDice) {
    Carpeta carpeta;
    const std::string disco = carpeta / "disco";
    std::filesystem::create_directory(disco);
    if (::mount("tmpfs", disco.c_str(), "tmpfs", 0, "size=1200k") != 0) {
        GTEST_SKIP() << "hace falta poder montar un disco pequeño";
    }
    const std::string ruta = disco + "/t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    {
        BaseDatos base = Exigir(BaseDatos::Abrir(ruta, Modo::Escritura));
        Exigir(Exigir(base.AbrirTabla("Cortesia")).Vaciar());
        EXPECT_EQ(base.Guardar().error().codigo, Error::Codigo::DiscoLleno);
        EXPECT_TRUE(LeerBytes(ruta) == LeerBytes(Datos(kTerminal)));
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(disco), {}), 1);
    }
    ::umount(disco.c_str());
}

/// A folder that cannot be opened, only changed: the save happens, its sync does not.
TEST(Guardar, SinAsegurarLaCarpetaGuardaYAvisa) {
    Carpeta carpeta;
    const std::string cerrada = carpeta / "cerrada";
    std::filesystem::create_directory(cerrada);
    const std::string ruta = cerrada + "/t.mdb";
    std::filesystem::copy_file(Datos(kTerminal), ruta);
    constexpr uid_t kNadie = 65534;
    const bool raiz = ::geteuid() == 0;
    ASSERT_EQ(::chmod(cerrada.c_str(), 0333), 0);
    ASSERT_EQ(::chmod((carpeta / "").c_str(), 0755), 0);
    ASSERT_EQ(::chmod(ruta.c_str(), 0666), 0);
    if (raiz) {
        ASSERT_EQ(::seteuid(kNadie), 0);
    }
    auto base = BaseDatos::Abrir(ruta, Modo::Escritura);
    const auto vaciada = base ? Exigir(base->AbrirTabla("Cortesia")).Vaciar() : base.error();
    const auto guardada = base && vaciada ? base->Guardar() : vaciada;
    if (raiz) {
        ASSERT_EQ(::seteuid(0), 0);
    }
    ::chmod(cerrada.c_str(), 0755);
    Exigir(guardada);
    ASSERT_TRUE(base->AvisoAlGuardar().has_value());
    EXPECT_NE(base->AvisoAlGuardar()->mensaje.find("quedó guardado"), std::string::npos);
    EXPECT_TRUE(Filas(Exigir(Exigir(BaseDatos::Abrir(ruta)).AbrirTabla("Cortesia"))).empty());
    // Nothing of it sticks to the next save.
    Exigir(base->GuardarComo(carpeta / "otra.mdb"));
    EXPECT_FALSE(base->AvisoAlGuardar().has_value());
}

TEST(Guardar, BarreLoQueDejaronLosProcesosMuertos) {
    Carpeta carpeta;
    const pid_t hijo = ::fork();
    if (hijo == 0) ::_exit(0);
    ASSERT_GT(hijo, 0);
    ASSERT_EQ(::waitpid(hijo, nullptr, 0), hijo);
    const std::string muerto = std::to_string(hijo);
    const std::string vivo = std::to_string(::getppid());
    const std::pair<std::string, bool> casos[] = {
        {"t.mdb." + muerto + "-0.tmp", false},      {"otra.mdb." + muerto + "-12.tmp", false},
        {"t.mdb." + vivo + "-0.tmp", true},         {"t.mdb." + muerto + "-0.tmp.bak", true},
        {"t.txt." + muerto + "-0.tmp", true},       {"t.mdb.abc-0.tmp", true},
        {"t.mdb." + muerto + "-0x.tmp", true},      {"t.mdb.tmp", true},
        {"cerrada.mdb." + muerto + "-0.tmp", true},
    };
    for (const auto& [nombre, queda] : casos)
        std::ofstream(carpeta / nombre) << "x";
    // One whose process cannot be seen from here, but whose lock can.
    const int fd = ::open((carpeta / casos[8].first).c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "t.mdb"));
    Exigir(base.Guardar());
    ::close(fd);
    for (const auto& [nombre, queda] : casos)
        EXPECT_EQ(std::filesystem::exists(carpeta / nombre), queda) << nombre;
}

TEST(Ldb, SeVe) {
    Carpeta carpeta;
    EXPECT_EQ(MirarLdb(carpeta / "t.mdb"), EstadoLdb::NoHay);
    // What is there and cannot be opened may hide anything.
    std::filesystem::create_symlink(carpeta / "v.ldb", carpeta / "v.ldb");
    EXPECT_EQ(MirarLdb(carpeta / "v.mdb"), EstadoLdb::EnUso);
    std::ofstream(carpeta / "t.ldb") << "x";
    EXPECT_EQ(MirarLdb(carpeta / "t.mdb"), EstadoLdb::SinUso);
    // A lock of the open file, not of the process, which does not see its own.
    const int fd = ::open((carpeta / "t.ldb").c_str(), O_RDWR | O_CLOEXEC);
    struct flock candado {};
    candado.l_type = F_WRLCK;
    candado.l_len = 1;
    ASSERT_EQ(::fcntl(fd, F_OFD_SETLK, &candado), 0);
    EXPECT_EQ(MirarLdb(carpeta / "t.mdb"), EstadoLdb::EnUso);
    ::close(fd);
}

/// Everything that reads, and a change; what comes out does not matter, only that it ends.
void Maltratar(std::vector<std::uint8_t> bytes) {
    auto base = BaseDatos::AbrirImagen(std::move(bytes), Modo::Escritura);
    if (!base) {
        EXPECT_FALSE(base.error().mensaje.empty());
        return;
    }
    static_cast<void>(VolcarBase(*base, [](std::string_view) { return true; }));
    static_cast<void>(Verificador::Verificar(*base));
    auto tabla = base->AbrirTabla("Tipo_Pago");
    if (tabla) static_cast<void>(tabla->Vaciar());
}

TEST(Dano, CortadoEnCualquierPaginaEsUnError) {
    const std::vector<std::uint8_t> sano = LeerBytes(Datos(kTerminal));
    for (std::size_t paginas = 1; paginas < sano.size() / 4096; paginas += 7) {
        std::vector<std::uint8_t> bytes(sano.begin(),
                                        sano.begin() + static_cast<std::ptrdiff_t>(paginas * 4096));
        const auto base = BaseDatos::AbrirImagen(bytes);
        ASSERT_TRUE(base.has_value());
        const auto volcado = VolcarBase(*base, [](std::string_view) { return true; });
        const auto hallazgos = Verificador::Verificar(*base);
        // What lies in the part that is left may be all there is to dump, but never unnoticed.
        EXPECT_TRUE(!volcado || !hallazgos || !hallazgos->empty()) << paginas;
        Maltratar(std::move(bytes));
    }
}

TEST(Dano, BytesCambiadosNuncaTumbanElPrograma) {
    const std::vector<std::uint8_t> sano = LeerBytes(Datos(kTerminal));
    const std::string esperado = Volcar(AbrirCopia(kTerminal));
    std::uint32_t azar = 12345;
    const auto siguiente = [&azar] { return azar = azar * 1664525U + 1013904223U, azar >> 8; };
    for (int vuelta = 0; vuelta < 60; ++vuelta) {
        std::vector<std::uint8_t> bytes = sano;
        for (int i = 0; i < 1 + vuelta % 20; ++i) {
            // Half of the hits go to the front of a page, where its structure is.
            const std::size_t pagina = siguiente() % (sano.size() / 4096);
            const std::size_t lugar = siguiente() % (i % 2 == 0 ? 64 : 4096);
            bytes[pagina * 4096 + lugar] ^= static_cast<std::uint8_t>(1 + siguiente() % 255);
        }
        Maltratar(std::move(bytes));
    }
}

struct CasoDano {
    const char* por_que;
    std::size_t posicion;
    std::uint8_t mascara;
};

/// Structural damage does not go unnoticed by the verifier.
TEST(Dano, ElVerificadorLoEncuentra) {
    const std::vector<std::uint8_t> sano = LeerBytes(Datos(kTerminal));
    // The first data page, index leaf and definition of user tables.
    const auto primera = [&](std::uint8_t tipo) {
        std::size_t p = 20;
        while (sano[p * 4096] != tipo || (tipo == 1 && sano[p * 4096 + 12] < 2) ||
               (tipo == 4 && sano[p * 4096 + 27] == 0 && sano[p * 4096 + 28] == 0)) {
            ++p;
        }
        return p * 4096;
    };
    // The column of type Binary in the definition of the rights' table.
    std::size_t sid = 3 * 4096 + 0x3F + std::size_t{12} * sano[3 * 4096 + 0x33];
    while (sano[sid] != 0x09)
        sid += 25;
    const CasoDano casos[] = {
        {"tipo de página de datos", primera(1), 0x06},
        {"bytes libres", primera(1) + 2, 0x01},
        {"dueño", primera(1) + 4, 0x01},
        {"filas de menos", primera(1) + 12, 0x01},
        {"posición de una fila", primera(1) + 14, 0x01},
        {"fila borrada", primera(1) + 15, 0xC0},
        {"bytes libres de un índice", primera(4) + 2, 0x01},
        {"tabla de un índice", primera(4) + 4, 0x01},
        {"enlace de una hoja", primera(4) + 16, 0x01},
        {"clave", primera(4) + 481, 0x01},
        {"cola en una hoja", primera(4) + 20, 0x01},
        {"el SID de los permisos pasa de Binario a Texto", sid, 0x03},
        {"filas de la definición", primera(2) + 0x10, 0x04},
        {"largo de la definición", primera(2) + 0x08, 0x04},
        {"raíz de un índice", 2 * 4096 + 0x3B, 0x01},
        {"mapa global", 1 * 4096 + 4032 + 4, 0x02},
    };
    for (const CasoDano& caso : casos) {
        std::vector<std::uint8_t> bytes = sano;
        bytes[caso.posicion] ^= caso.mascara;
        const auto base = Exigir(BaseDatos::AbrirImagen(bytes));
        EXPECT_NE(Hallazgos(base, Cuales::Fallas), "") << caso.por_que;
    }
}

/// A column without a value has a place in the row all the same, which other programs go by.
TEST(Dano, ElVerificadorMiraElLugarDeLoQueNoTieneValor) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "n.mdb"));
    Tabla tabla = Exigir(
        base.CrearTabla({.nombre = "T",
                         .columnas = {{.nombre = "N", .tipo = TipoColumna::Largo},
                                      {.nombre = "A", .tipo = TipoColumna::Texto, .largo = 9},
                                      {.nombre = "B", .tipo = TipoColumna::Texto, .largo = 9}},
                         .indices = {}}));
    const IdFila id = Exigir(tabla.Insertar(std::vector<Valor>{7, {}, {}}));
    const auto sano = Exigir(base.Imagen());
    // From the end of the row: null mask, number of variable columns, A, B, end mark.
    const std::size_t fin = (std::size_t{id.pagina} + 1) * 4096;
    for (const std::size_t lugar : {fin - 7, fin - 9}) {
        for (const std::uint8_t posicion : {std::uint8_t{5}, std::uint8_t{200}}) {
            auto bytes = sano;
            ASSERT_EQ(bytes[lugar], 6) << lugar;
            bytes[lugar] = posicion;
            EXPECT_NE(Hallazgos(Exigir(BaseDatos::AbrirImagen(bytes)), Cuales::Fallas), "")
                << lugar << " " << int{posicion};
        }
    }
}

TEST(Crear, SinPermisosQueDarNoHayTablaNueva) {
    Carpeta carpeta;
    BaseDatos base = Exigir(BaseDatos::Crear(carpeta / "p.mdb"));
    auto bytes = Exigir(base.Imagen());
    std::size_t sid = 3 * 4096 + 0x3F + std::size_t{12} * bytes[3 * 4096 + 0x33];
    while (bytes[sid] != 0x09)
        sid += 25;
    bytes[sid] = 0x0A;
    BaseDatos danada = Exigir(BaseDatos::AbrirImagen(bytes, Modo::Escritura));
    const auto tabla =
        danada.CrearTabla({.nombre = "T", .columnas = {{.nombre = "A"}}, .indices = {}});
    ASSERT_FALSE(tabla.has_value());
    EXPECT_EQ(tabla.error().codigo, Error::Codigo::Formato);
    EXPECT_TRUE(Exigir(danada.Tablas()).empty());
}

}  // namespace
}  // namespace quimo::jet::prueba
