#include "base/reemplazo.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

/// Asked with the bytes of a write below the test's folder: how many of them the system may take.
std::function<std::size_t(std::size_t)>& AlEscribir() {
    static std::function<std::size_t(std::size_t)> cuantos;
    return cuantos;
}

}  // namespace

/// Stands before the system's own.
extern "C" ssize_t write(int fd, const void* datos, std::size_t bytes) {
    if (AlEscribir()) bytes = AlEscribir()(bytes);
    return ::syscall(SYS_write, fd, datos, bytes);
}

namespace quimo::base {
namespace {

namespace fs = std::filesystem;
using Restos = Reemplazo::Restos;

class ReemplazoTest : public testing::Test {
protected:
    void SetUp() override {
        std::string plantilla = (fs::temp_directory_path() / "reemplazo-XXXXXX").string();
        ASSERT_NE(::mkdtemp(plantilla.data()), nullptr);
        carpeta_ = plantilla;
    }
    void TearDown() override {
        AlEscribir() = nullptr;
        std::error_code fallo;
        fs::permissions(carpeta_, fs::perms::owner_all, fallo);
        fs::remove_all(carpeta_, fallo);
    }

    std::string Ruta(const std::string& nombre) const { return (carpeta_ / nombre).string(); }
    Result<Reemplazo, FalloSistema> Crear(Restos restos = Restos::Pisar) const {
        return Reemplazo::Crear(Ruta("datos"), Ruta("datos.nuevo"), restos, 0644);
    }
    /// A symbolic link, so that what is removed is never the file of the system.
    Reemplazo Sobre(const char* archivo) const {
        fs::create_symlink(archivo, Ruta("datos.nuevo"));
        auto nuevo = Crear();
        QUIMO_CHECK(nuevo.has_value());
        return std::move(nuevo).value();
    }
    void Poner(const std::string& nombre, const std::string& contenido) const {
        std::ofstream(Ruta(nombre)) << contenido;
    }
    std::string Leer(const std::string& nombre) const {
        std::ifstream archivo(Ruta(nombre), std::ios::binary);
        return {std::istreambuf_iterator<char>(archivo), {}};
    }
    std::size_t Archivos() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(carpeta_), fs::directory_iterator()));
    }

    fs::path carpeta_;
};

int ErrorDe(const Result<void, FalloSistema>& hecho) { return hecho ? 0 : hecho.error().error; }

int ErrorAlEscribir(Reemplazo& nuevo, const std::string& datos) {
    return ErrorDe(nuevo.Escribir(datos.data(), datos.size()));
}

TEST_F(ReemplazoTest, HastaColocarseQuedaElAnterior) {
    Poner("datos", "viejo");
    {
        auto nuevo = Crear();
        ASSERT_TRUE(nuevo);
        EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), 0);
        EXPECT_EQ(ErrorDe(nuevo->Asegurar()), 0);
        EXPECT_EQ(Leer("datos"), "viejo");
    }
    EXPECT_EQ(Leer("datos"), "viejo");
    EXPECT_EQ(Archivos(), 1U) << "the temporary file goes with the object";
    {
        auto nuevo = Crear();
        ASSERT_TRUE(nuevo);
        EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), 0);
        Reemplazo movido = std::move(*nuevo);  // one of them alone looks after the file
        EXPECT_EQ(ErrorDe(movido.Cerrar()), 0);
        EXPECT_EQ(ErrorDe(movido.Colocar()), 0);
        EXPECT_EQ(ErrorDe(AsegurarNombre(Ruta("datos"))), 0);
        Poner("datos.nuevo", "de otro");
    }
    EXPECT_EQ(Leer("datos"), "nuevo");
    EXPECT_EQ(Leer("datos.nuevo"), "de otro") << "what was put in place is nobody's rest";
}

TEST_F(ReemplazoTest, LoQueDejoUnaCorridaMuertaSePisaOSeRespeta) {
    Poner("datos.nuevo", "resto más largo que lo nuevo");
    const auto respetado = Crear(Restos::Respetar);
    ASSERT_FALSE(respetado);
    EXPECT_EQ(respetado.error().error, EEXIST);
    EXPECT_EQ(Archivos(), 1U) << "the file of somebody else stays";
    auto nuevo = Crear(Restos::Pisar);
    ASSERT_TRUE(nuevo);
    EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), 0);
    EXPECT_EQ(ErrorDe(nuevo->Colocar()), 0);
    EXPECT_EQ(Leer("datos"), "nuevo");
}

TEST_F(ReemplazoTest, ColocarSiFaltaNoReemplaza) {
    for (const bool enlace_roto : {false, true}) {
        if (enlace_roto) {
            fs::create_symlink(Ruta("ausente"), Ruta("datos"));
        } else {
            Poner("datos", "de otro");
        }
        {
            auto nuevo = Crear();
            ASSERT_TRUE(nuevo);
            EXPECT_EQ(ErrorDe(nuevo->ColocarSiFalta()), EEXIST) << enlace_roto;
        }
        EXPECT_EQ(Archivos(), 1U) << enlace_roto;
        fs::remove(Ruta("datos"));
    }
    auto nuevo = Crear();
    ASSERT_TRUE(nuevo);
    EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), 0);
    EXPECT_EQ(ErrorDe(nuevo->ColocarSiFalta()), 0);
    EXPECT_EQ(Leer("datos"), "nuevo");
    EXPECT_EQ(Archivos(), 1U);
}

TEST_F(ReemplazoTest, UnDiscoLlenoEsENOSPC) {
    Poner("datos", "viejo");
    {
        Reemplazo nuevo = Sobre("/dev/full");
        EXPECT_EQ(ErrorAlEscribir(nuevo, "nuevo"), ENOSPC);
    }
    EXPECT_EQ(Leer("datos"), "viejo");
    EXPECT_EQ(Archivos(), 1U);
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST_F(ReemplazoTest, UnArchivoQueNoDebeCrecerMasSeEscribeHastaDondeCabe) {
    constexpr rlim_t kLimite = 1000;
    struct rlimit antes {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &antes), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit corto { kLimite, antes.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &corto), 0);
    auto nuevo = Crear();
    const int error = nuevo ? ErrorAlEscribir(*nuevo, std::string(kLimite + 1, 'x')) : -1;
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &antes), 0);
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(fs::file_size(Ruta("datos.nuevo")), kLimite);
}

TEST_F(ReemplazoTest, LoQueElSistemaTomaAPedazosQuedaEntero) {
    AlEscribir() = [](std::size_t bytes) { return bytes > 3 ? bytes / 3 : 1; };
    const std::string datos = "0123456789abcdefghijklmnopqrstuvwxyz";
    auto nuevo = Crear();
    ASSERT_TRUE(nuevo);
    EXPECT_EQ(ErrorAlEscribir(*nuevo, datos), 0);
    EXPECT_EQ(ErrorDe(nuevo->Colocar()), 0);
    EXPECT_EQ(Leer("datos"), datos);
}

TEST_F(ReemplazoTest, UnaEscrituraDeCeroBytesTermina) {
    AlEscribir() = [](std::size_t) { return std::size_t{0}; };
    auto nuevo = Crear();
    ASSERT_TRUE(nuevo);
    EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), ENOSPC);
    EXPECT_EQ(ErrorAlEscribir(*nuevo, ""), 0) << "nothing to write is no write";
}

/// A timer that interrupts whatever call the process is in, again and again.
class Interrupciones {
public:
    Interrupciones() {
        struct sigaction mudo {};
        mudo.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &mudo, &antes_);
        const struct itimerval cada {
            {0, 1000}, { 0, 1000 }
        };
        ::setitimer(ITIMER_REAL, &cada, nullptr);
    }
    Interrupciones(const Interrupciones&) = delete;
    Interrupciones& operator=(const Interrupciones&) = delete;
    ~Interrupciones() {
        const struct itimerval nunca {};
        ::setitimer(ITIMER_REAL, &nunca, nullptr);
        ::sigaction(SIGALRM, &antes_, nullptr);
    }

private:
    struct sigaction antes_ {};
};

TEST_F(ReemplazoTest, UnaLlamadaInterrumpidaSeRepitePeroNoParaSiempre) {
    // A pipe that nobody empties: every call waits until a signal ends it.
    ASSERT_EQ(::mkfifo(Ruta("datos.nuevo").c_str(), 0600), 0);
    auto nuevo = Crear();
    ASSERT_TRUE(nuevo);
    const int cabe = ::fcntl(nuevo->Fd(), F_GETPIPE_SZ);
    ASSERT_GT(cabe, 0);
    int llamadas = 0;
    AlEscribir() = [&](std::size_t bytes) {
        ++llamadas;
        return bytes;
    };
    const Interrupciones interrupciones;
    EXPECT_EQ(ErrorAlEscribir(*nuevo, std::string(static_cast<std::size_t>(cabe) + 1, 'x')), EINTR);
    EXPECT_GT(llamadas, 2) << "one interruption alone is no failure";
}

TEST_F(ReemplazoTest, SinPermisoOSinCarpetaNoSeEmpieza) {
    const auto sin_carpeta =
        Reemplazo::Crear(Ruta("falta/datos"), Ruta("falta/datos.nuevo"), Restos::Pisar, 0644);
    ASSERT_FALSE(sin_carpeta);
    EXPECT_EQ(sin_carpeta.error().error, ENOENT);
    // Not even an administrator makes a file there.
    const auto en_proc = Reemplazo::Crear("/proc/datos", "/proc/datos.nuevo", Restos::Pisar, 0644);
    EXPECT_FALSE(en_proc);
    if (::geteuid() == 0) return;
    fs::permissions(carpeta_, fs::perms::owner_read | fs::perms::owner_exec);
    const auto sin_permiso = Crear();
    ASSERT_FALSE(sin_permiso);
    EXPECT_EQ(sin_permiso.error().error, EACCES);
}

TEST_F(ReemplazoTest, UnaCarpetaQueDesapareceEsENOENT) {
    fs::create_directory(Ruta("breve"));
    auto nuevo =
        Reemplazo::Crear(Ruta("breve/datos"), Ruta("breve/datos.nuevo"), Restos::Pisar, 0644);
    ASSERT_TRUE(nuevo);
    fs::remove_all(Ruta("breve"));
    EXPECT_EQ(ErrorAlEscribir(*nuevo, "nuevo"), 0) << "the open file is still there";
    EXPECT_EQ(ErrorDe(nuevo->Colocar()), ENOENT);
    EXPECT_EQ(ErrorDe(nuevo->ColocarSiFalta()), ENOENT);
    EXPECT_EQ(ErrorDe(AsegurarNombre(Ruta("breve/datos"))), ENOENT);
}

TEST_F(ReemplazoTest, UnaCarpetaNoSeReemplaza) {
    fs::create_directory(Ruta("datos"));
    Poner("datos/dentro", "x");
    {
        auto nuevo = Crear();
        ASSERT_TRUE(nuevo);
        EXPECT_EQ(ErrorDe(nuevo->Colocar()), EISDIR);
    }
    EXPECT_EQ(Leer("datos/dentro"), "x");
    EXPECT_EQ(Archivos(), 1U);
}

}  // namespace
}  // namespace quimo::base
