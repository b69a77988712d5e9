#include "dayclose/terminales/smb_share.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "dayclose/terminales/conexion_smb.h"
#include "servidor_smb.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {
namespace {

using pruebas::CuandoCrezca;
using pruebas::EscribirArchivo;
using pruebas::LeerArchivo;
using pruebas::ServidorSmb;

const QString kRemoto = u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s;

/// A port that takes connections and never says a word or, once it is full, does not even take
/// them.
class PuertoMudo {
public:
    enum class Lleno { No, Si };

    explicit PuertoMudo(Lleno lleno) : sockets_{pruebas::SocketEnLoopback()} {
        ::listen(sockets_[0], lleno == Lleno::Si ? 0 : 8);
        for (int i = 0; lleno == Lleno::Si && i < 3; ++i)
            sockets_.push_back(pruebas::LlamarALoopback(Puerto()));
    }
    PuertoMudo(const PuertoMudo&) = delete;
    PuertoMudo& operator=(const PuertoMudo&) = delete;
    ~PuertoMudo() {
        for (const int uno : sockets_)
            ::close(uno);
    }
    quint16 Puerto() const { return pruebas::PuertoDe(sockets_[0]); }

private:
    std::vector<int> sockets_;
};

class SmbShareTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        servidor_ = std::make_unique<ServidorSmb>();
        ASSERT_TRUE(servidor_->Arrancar());
    }
    static void TearDownTestSuite() { servidor_.reset(); }

    void SetUp() override {
        QDir(servidor_->Ruta(u"quimo"_s, QString())).removeRecursively();
        EscribirArchivo(Servida(u"Quimo_Terminal.mdb"_s), "vieja");
        EscribirArchivo(servidor_->Ruta(u"clave"_s, u"Quimo_Terminal.mdb"_s), "guardada");
        EscribirArchivo(carpeta_.filePath(u"nueva"_s), "nueva");
        EscribirArchivo(Local(), "local");
        share_ = std::make_unique<SmbShare>(Configuracion());
    }

    static QString Servida(const QString& nombre) { return servidor_->Ruta(u"quimo"_s, nombre); }
    QString Local() const { return carpeta_.filePath(u"local.mdb"_s); }
    QString Nueva() const { return carpeta_.filePath(u"nueva"_s); }

    /// The names of the tests' computers; all are this one.
    ConfiguracionRed Configuracion(const QByteArray& mas = {}) const {
        const QString ruta = carpeta_.filePath(u"red.conf"_s);
        const QByteArray clave(ServidorSmb::kClave);
        const QByteArray usuario = "usuario=" + servidor_->Usuario().toUtf8() + '\n';
        EscribirArchivo(ruta, "direccion = 127.0.0.1\nplazo = 5\npuerto = " +
                                  QByteArray::number(servidor_->Puerto()) +
                                  "\n[CAJA1]\n[Segura]\n" + usuario + "clave=\"" + clave +
                                  "\"\n[Mala]\n" + usuario + "clave=otra\n[Apagada]\npuerto=1\n" +
                                  "[nadie.invalid]\ndireccion = nadie.invalid\n" + mas);
        QFile::setPermissions(ruta, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        auto leida = ConfiguracionRed::Leer(ruta);
        EXPECT_TRUE(leida) << (leida ? std::string() : leida.error().mensaje);
        return leida ? *leida : ConfiguracionRed();
    }
    /// Sends the new file over whatever can be fetched from there now.
    ResultadoArchivo<void> Llevar(const QString& remoto) {
        const auto traido = share_->Traer(remoto, carpeta_.filePath(u"antes"_s));
        return share_->Llevar(Nueva(), remoto, traido ? traido->sha256 : QString());
    }
    /// Another client of the share, for holding files open.
    std::unique_ptr<ConexionSmb> OtroCliente(const RutaRed& ruta) const {
        auto otra = ConexionSmb::Abrir(ruta, Configuracion().Para(u"CAJA1"_s));
        EXPECT_TRUE(otra);
        return otra ? std::move(otra).value() : nullptr;
    }
    static QStringList EnLaCarpeta() {
        return QDir(Servida(QString())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    static std::unique_ptr<ServidorSmb> servidor_;
    QTemporaryDir carpeta_;
    std::unique_ptr<SmbShare> share_;
};

std::unique_ptr<ServidorSmb> SmbShareTest::servidor_;

template <typename T>
int NumeroDe(const ResultadoArchivo<T>& resultado) {
    return resultado ? 0 : resultado.error().numero;
}

TEST_F(SmbShareTest, CadaFallaTieneSuNumero) {
    const PuertoMudo mudo(PuertoMudo::Lleno::No);
    const PuertoMudo sordo(PuertoMudo::Lleno::Si);
    share_ = std::make_unique<SmbShare>(Configuracion(
        "[Muda]\nplazo = 1\npuerto = " + QByteArray::number(mudo.Puerto()) +
        "\n[Sorda]\nplazo = 1\npuerto = " + QByteArray::number(sordo.Puerto()) + '\n'));
    QDir().mkpath(Servida(u"carpeta"_s));
    struct Caso {
        QString remoto;
        int existe;  // 1, 0 or the number of the failure
        int traer;   // 0 or the number of the failure
        int llevar;
    };
    const Caso casos[] = {
        {u"\\\\CAJA1\\quimo\\Quimo_Terminal.mdb"_s, 1, 0, 0},
        {u"\\\\caja1\\QUIMO\\quimo_TERMINAL.mdb"_s, 1, 0, 0},  // names compare without case
        {u"\\\\CAJA1\\quimo\\otro.mdb"_s, 0, 53, 0},
        {u"\\\\CAJA1\\quimo\\carpeta"_s, 0, 75, 75},
        {u"\\\\CAJA1\\quimo\\nohay\\Quimo_Terminal.mdb"_s, 0, 76, 76},
        {u"\\\\CAJA1\\nohay\\Quimo_Terminal.mdb"_s, 76, 76, 76},
        {u"\\\\CAJA1\\clave\\Quimo_Terminal.mdb"_s, 75, 75, 75},  // not for guests
        {u"\\\\SEGURA\\clave\\Quimo_Terminal.mdb"_s, 1, 0, 0},
        {u"\\\\MALA\\clave\\Quimo_Terminal.mdb"_s, 75, 75, 75},
        {u"\\\\MALA\\quimo\\Quimo_Terminal.mdb"_s, 75, 75, 75},  // and not as guest instead
        {u"\\\\APAGADA\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\MUDA\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\SORDA\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\nadie.invalid\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\CAJA1\\..\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\CAJA1\\quimo\\*.mdb"_s, 52, 52, 52},
        {u"\\\\otro@CAJA1\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\\\quimo\\Quimo_Terminal.mdb"_s, 52, 52, 52},
        {u"\\\\CAJA1\\quimo"_s, 52, 52, 52},
    };
    for (const Caso& caso : casos) {
        const auto existe = share_->Existe(caso.remoto);
        EXPECT_EQ(existe ? static_cast<int>(*existe) : existe.error().numero, caso.existe)
            << caso.remoto.toStdString();
        const auto traido = share_->Traer(caso.remoto, Local());
        EXPECT_EQ(NumeroDe(traido), caso.traer) << caso.remoto.toStdString();
        const auto llevado = Llevar(caso.remoto);
        EXPECT_EQ(NumeroDe(llevado), caso.llevar) << caso.remoto.toStdString();
        for (const FalloArchivo* fallo :
             {existe ? nullptr : &existe.error(), traido ? nullptr : &traido.error()}) {
            if (fallo == nullptr) continue;
            EXPECT_FALSE(fallo->descripcion.contains(QString::fromUtf8(ServidorSmb::kClave)));
            EXPECT_FALSE(fallo->descripcion.contains(u"127.0.0.1"_s)) << "names, not our addresses";
        }
    }
}

TEST_F(SmbShareTest, CopiaCualquierContenidoConCualquierNombre) {
    QByteArray grande;
    for (quint32 i = 0; grande.size() < (20 << 20); ++i)
        grande.append(QByteArray::number(i * 2654435761U));
    const QString nombres[] = {u"Quimo_Terminal.mdb"_s, u"ñandú al 100% #1.mdb"_s,
                               u"Año nuevo\\%20 & €+ó.mdb"_s};
    QDir().mkpath(Servida(u"Año nuevo"_s));
    for (const QString& nombre : nombres) {
        const QString remoto = u"\\\\CAJA1\\quimo\\"_s + nombre;
        for (const QByteArray& contenido : {QByteArray(), QByteArray("corto"), grande}) {
            EscribirArchivo(Nueva(), contenido);
            ASSERT_EQ(NumeroDe(Llevar(remoto)), 0) << nombre.toStdString();
            QString en_disco = nombre;
            EXPECT_TRUE(LeerArchivo(Servida(en_disco.replace(u'\\', u'/'))) == contenido);
            const auto existe = share_->Existe(remoto);
            EXPECT_TRUE(existe && *existe);
            const auto traido = share_->Traer(remoto, Local());
            ASSERT_TRUE(traido);
            EXPECT_EQ(traido->bytes, contenido.size());
            EXPECT_EQ(traido->sha256.toLatin1(),
                      QCryptographicHash::hash(contenido, QCryptographicHash::Sha256).toHex());
            EXPECT_TRUE(LeerArchivo(Local()) == contenido);
        }
    }
    EXPECT_EQ(EnLaCarpeta().size(), 3) << EnLaCarpeta().join(u' ').toStdString();
}

TEST_F(SmbShareTest, LoQueOtroTieneAbiertoEs70YQuedaComoEstaba) {
    struct Caso {
        int modo;
        Compartir compartir;
        int traer;
        QString extension;
    };
    const Caso casos[] = {
        {O_RDWR, Compartir::Nada, 70, u".mdb"_s},
        {O_RDWR, Compartir::Todo, 70, u".mdb"_s},  // as the terminals' own program holds it
        {O_RDONLY, Compartir::Nada, 70, u".mdb"_s},
        {O_RDONLY, Compartir::Todo, 0, u".mdb"_s},
        {O_RDWR | O_CREAT, Compartir::Todo, 70, u".ldb"_s},
        {O_RDWR | O_CREAT, Compartir::Nada, 70, u".ldb"_s},
    };
    const auto base = RutaRed::Leer(kRemoto);
    ASSERT_TRUE(base);
    const auto otro = OtroCliente(*base);
    ASSERT_NE(otro, nullptr);
    for (const Caso& caso : casos) {
        const RutaRed ruta = base->ConExtension(caso.extension);
        EscribirArchivo(Servida(u"Quimo_Terminal.mdb"_s), "vieja");
        const QString resto = Servida(u"Quimo_Terminal.mdb.parcial"_s);
        EscribirArchivo(resto, "resto de otra vez");
        {
            const auto abierto = otro->AbrirArchivo(ruta, caso.modo, caso.compartir);
            ASSERT_TRUE(abierto);
            EXPECT_EQ(NumeroDe(share_->Traer(kRemoto, Local())), caso.traer);
            EXPECT_EQ(NumeroDe(Llevar(kRemoto)), 70);
            EXPECT_TRUE(share_->Existe(kRemoto).has_value());
        }
        EXPECT_EQ(LeerArchivo(Servida(u"Quimo_Terminal.mdb"_s)), "vieja");
        EXPECT_EQ(LeerArchivo(resto), "resto de otra vez") << "nothing was written before the 70";
        EXPECT_EQ(NumeroDe(Llevar(kRemoto)), 0) << "nobody has it open, also when an .ldb is left";
        EXPECT_EQ(LeerArchivo(Servida(u"Quimo_Terminal.mdb"_s)), "nueva");
        QFile::remove(Servida(u"Quimo_Terminal.ldb"_s));
        EXPECT_EQ(EnLaCarpeta(), QStringList{u"Quimo_Terminal.mdb"_s});
    }
}

TEST_F(SmbShareTest, LoQueDejoUnReemplazoInterrumpidoSeArregla) {
    const QString base = u"Quimo_Terminal.mdb"_s;
    struct Caso {
        QString nombre;
        QByteArray archivo;  // empty: not there
        QByteArray parcial;
        QByteArray anterior;
        QByteArray se_trae;
    };
    const Caso casos[] = {
        {u"mientras se escribía"_s, "vieja", "nue", {}, "vieja"},
        {u"entre los dos cambios de nombre"_s, {}, "nueva", "vieja", "vieja"},
        {u"antes de borrar el anterior"_s, "nueva", {}, "vieja", "nueva"},
    };
    for (const Caso& caso : casos) {
        for (const bool se_mira : {true, false}) {
            QFile::remove(Servida(base));
            if (!caso.archivo.isEmpty()) EscribirArchivo(Servida(base), caso.archivo);
            if (!caso.parcial.isEmpty())
                EscribirArchivo(Servida(base + u".parcial"_s), caso.parcial);
            if (!caso.anterior.isEmpty())
                EscribirArchivo(Servida(base + u".anterior"_s), caso.anterior);
            if (se_mira) {
                const auto existe = share_->Existe(kRemoto);
                EXPECT_TRUE(existe && *existe) << caso.nombre.toStdString();
                ASSERT_TRUE(share_->Traer(kRemoto, Local()));
                EXPECT_EQ(LeerArchivo(Local()), caso.se_trae) << caso.nombre.toStdString();
                EXPECT_FALSE(QFile::exists(Servida(base + u".anterior"_s)));
            }
            EscribirArchivo(Nueva(), "otra");
            ASSERT_EQ(NumeroDe(Llevar(kRemoto)), 0) << caso.nombre.toStdString();
            EXPECT_EQ(LeerArchivo(Servida(base)), "otra");
            EXPECT_EQ(EnLaCarpeta(), QStringList{base}) << caso.nombre.toStdString();
        }
    }
}

TEST_F(SmbShareTest, LoQueSeVendeHastaElUltimoMomentoNoSeReemplaza) {
    const QString base = Servida(u"Quimo_Terminal.mdb"_s);
    const QString resumen = pruebas::Sha256De("vieja");
    struct Caso {
        const char* nombre;
        QByteArray antes;  // empty: no file
        QString esperado;
        std::function<void()> mientras;  // while the new file is sent
        int numero;
        QByteArray queda;
    };
    const Caso casos[] = {
        {"nadie vende", "vieja", resumen, {}, 0, "nueva"},
        {"vende", "vieja", resumen, [&] { EscribirArchivo(base, "viejaY"); }, 3197, "viejaY"},
        {"cambia sin crecer", "vieja", resumen, [&] { EscribirArchivo(base, "viejA"); }, 3197,
         "viejA"},
        {"vendió antes", "viejaX", resumen, {}, 3197, "viejaX"},
        {"desaparece", "vieja", resumen, [&] { QFile::remove(base); }, 53, "no está"},
        {"no había", {}, QString(), {}, 0, "nueva"},
        {"aparece", {}, QString(), [&] { EscribirArchivo(base, "otra"); }, 3197, "otra"},
        {"había", "vieja", QString(), {}, 3197, "vieja"},
        {"ya no hay", {}, resumen, {}, 3197, "no está"},
    };
    for (const Caso& caso : casos) {
        QFile::remove(base);
        if (!caso.antes.isEmpty()) EscribirArchivo(base, caso.antes);
        bool completa = true;
        share_->antes_de_reemplazar = [&] {
            completa = LeerArchivo(base + u".parcial"_s) == "nueva";
            if (caso.mientras) caso.mientras();
        };
        EXPECT_EQ(NumeroDe(share_->Llevar(Nueva(), kRemoto, caso.esperado)), caso.numero)
            << caso.nombre;
        EXPECT_TRUE(completa) << caso.nombre;
        EXPECT_EQ(LeerArchivo(base), caso.queda) << caso.nombre;
        EXPECT_LE(EnLaCarpeta().size(), 1) << EnLaCarpeta().join(u' ').toStdString();
    }
}

TEST_F(SmbShareTest, UnEquipoQueSeReinicioEntretantoSigueContestando) {
    const std::function<ResultadoArchivo<void>()> operaciones[] = {
        [&]() -> ResultadoArchivo<void> {
            QUIMO_TRY_VOID(share_->Existe(kRemoto));
            return {};
        },
        [&]() -> ResultadoArchivo<void> {
            QUIMO_TRY_VOID(share_->Traer(kRemoto, Local()));
            return {};
        },
        [&] { return Llevar(kRemoto); },
    };
    for (const auto& operacion : operaciones) {
        for (const bool todo : {false, true}) {
            ASSERT_TRUE(share_->Existe(kRemoto));
            if (todo) {
                servidor_->Matar();
                ASSERT_TRUE(servidor_->Arrancar());
            } else {
                servidor_->MatarConexiones();
            }
            EXPECT_EQ(NumeroDe(operacion()), 0) << todo;
        }
    }
}

TEST_F(SmbShareTest, UnaCopiaQueSeRompeNoTocaLaBuena) {
    const QString grande = Servida(u"grande.mdb"_s);
    QFile hueco(grande);
    ASSERT_TRUE(hueco.open(QIODevice::WriteOnly) && hueco.resize(qint64{256} << 20));
    hueco.close();
    struct Caso {
        QString nombre;
        std::function<void()> accion;
        int numero;
    };
    const Caso casos[] = {
        {u"se cae la conexión"_s, [] { servidor_->MatarConexiones(); }, 52},
        {u"crece mientras se copia"_s, [&] { QFile(grande).resize((qint64{256} << 20) + 1); }, 70},
        {u"se achica mientras se copia"_s, [&] { QFile(grande).resize(1 << 20); }, 70},
        {u"el equipo deja de contestar"_s, [] { servidor_->Congelar(); }, 52},
    };
    share_ = std::make_unique<SmbShare>(Configuracion("[Breve]\nplazo = 1\n"));
    for (const Caso& caso : casos) {
        ASSERT_TRUE(QFile(grande).resize(qint64{256} << 20));
        CuandoCrezca vigia(Local() + u".parcial"_s, 1 << 20, caso.accion);
        const auto traido = share_->Traer(u"\\\\BREVE\\quimo\\grande.mdb"_s, Local());
        EXPECT_TRUE(vigia.Corrio()) << caso.nombre.toStdString();
        EXPECT_EQ(NumeroDe(traido), caso.numero) << caso.nombre.toStdString();
        EXPECT_EQ(LeerArchivo(Local()), "local") << caso.nombre.toStdString();
        EXPECT_FALSE(QFile::exists(Local() + u".parcial"_s));
        if (caso.nombre.contains(u"contestar"_s)) {
            EXPECT_EQ(NumeroDe(share_->Existe(u"\\\\BREVE\\quimo\\grande.mdb"_s)), 52);
            servidor_->Matar();
            ASSERT_TRUE(servidor_->Arrancar());
        }
        EXPECT_EQ(NumeroDe(share_->Traer(kRemoto, carpeta_.filePath(u"otra"_s))), 0);
    }
}

TEST_F(SmbShareTest, UnEnvioQueSeRompeDejaElAnteriorYElSiguienteLlega) {
    const QString parcial = Servida(u"Quimo_Terminal.mdb.parcial"_s);
    struct Caso {
        QString nombre;
        std::function<void()> accion;
        int numero;
    };
    const Caso casos[] = {
        {u"se cae la conexión"_s, [] { servidor_->MatarConexiones(); }, 52},
        {u"se apaga el equipo"_s, [] { servidor_->Matar(); }, 52},
        {u"se llena su disco"_s, [] {}, 61},
        {u"deja de contestar"_s, [] { servidor_->Congelar(); }, 52},
    };
    const QString remoto = u"\\\\BREVE\\quimo\\Quimo_Terminal.mdb"_s;
    share_ = std::make_unique<SmbShare>(Configuracion("[Breve]\nplazo = 1\n"));
    for (const Caso& caso : casos) {
        EscribirArchivo(Servida(u"Quimo_Terminal.mdb"_s), "vieja");
        QFile hueco(Nueva());
        ASSERT_TRUE(hueco.open(QIODevice::WriteOnly) && hueco.resize(qint64{1} << 30));
        hueco.close();
        CuandoCrezca vigia(parcial, 1 << 20, caso.accion);
        EXPECT_EQ(NumeroDe(Llevar(remoto)), caso.numero) << caso.nombre.toStdString();
        EXPECT_TRUE(vigia.Corrio()) << caso.nombre.toStdString();
        EXPECT_EQ(LeerArchivo(Servida(u"Quimo_Terminal.mdb"_s)), "vieja");
        EXPECT_EQ(QFile::exists(parcial), caso.numero == 52) << "cleaned where it could be";
        if (NumeroDe(share_->Existe(remoto)) != 0) {
            servidor_->Matar();
            ASSERT_TRUE(servidor_->Arrancar());
        }
        EscribirArchivo(Nueva(), "nueva");
        const auto llevado = Llevar(remoto);
        EXPECT_EQ(NumeroDe(llevado), 0) << caso.nombre.toStdString();
        EXPECT_EQ(LeerArchivo(Servida(u"Quimo_Terminal.mdb"_s)), "nueva");
        EXPECT_EQ(EnLaCarpeta(), QStringList{u"Quimo_Terminal.mdb"_s});
    }
}

TEST_F(SmbShareTest, QuienEnmudeceAntesDelReemplazoCuestaCuatroPlazosYConservaLoSuyo) {
    constexpr qint64 kPlazosMs = 4000;
    constexpr qint64 kHolguraMs = 2000;  // a busy machine
    share_ = std::make_unique<SmbShare>(Configuracion("[Breve]\nplazo = 1\n"));
    const QString remoto = u"\\\\BREVE\\quimo\\Quimo_Terminal.mdb"_s;
    QElapsedTimer reloj;
    share_->antes_de_reemplazar = [&] {
        servidor_->Congelar();
        reloj.start();
    };
    EXPECT_EQ(NumeroDe(Llevar(remoto)), 52);
    EXPECT_LT(reloj.elapsed(), kPlazosMs + kHolguraMs);
    servidor_->Matar();
    ASSERT_TRUE(servidor_->Arrancar());
    EXPECT_EQ(LeerArchivo(Servida(u"Quimo_Terminal.mdb"_s)), "vieja");
    share_->antes_de_reemplazar = nullptr;
    EXPECT_EQ(NumeroDe(Llevar(remoto)), 0);
    EXPECT_EQ(EnLaCarpeta(), QStringList{u"Quimo_Terminal.mdb"_s});
}

TEST(ConfiguracionRedTest, DiceQueEstaMalSinDecirLaClave) {
    const QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(u"red.conf"_s);
    struct Caso {
        QByteArray contenido;
        QString mensaje;  // part of it; empty: the file is read
    };
    const Caso casos[] = {
        {"", {}},
        {"\xEF\xBB\xBF# nota\r\n usuario = pepe \r\n\r\nclave=tabu=1;#\r\n[Caja Ñ]\r\n", {}},
        {"clave tabu\n", u"línea 1: se esperaba nombre = valor."_s},
        {"usuario = pepe\ntabu = 3\n", u"línea 2: no se conoce el nombre"_s},
        {"clave = tabu\nclave = tabu\n", u"línea 2: clave está repetido."_s},
        {"puerto = 70000", u"el puerto debe ser un número del 1 al 65535"_s},
        {"plazo = 0", u"el plazo debe ser un número de segundos del 1 al 300"_s},
        {"[CAJA1\n", u"línea 1: se esperaba el nombre de un equipo"_s},
        {"[CAJA1]\n[caja1]\n", u"línea 2: el equipo está repetido."_s},
        {"clave = " + QByteArray(300, 't'), u"el valor de clave es muy largo"_s},
        {"clave = \xFF\xFE", u"no está en UTF-8"_s},
        {QByteArray(100000, '#'), u"no es una configuración de red"_s},
    };
    for (const Caso& caso : casos) {
        EscribirArchivo(ruta, caso.contenido);
        QFile::setPermissions(ruta, QFileDevice::ReadOwner);
        const auto leida = ConfiguracionRed::Leer(ruta);
        const QString mensaje = leida ? QString() : QString::fromStdString(leida.error().mensaje);
        EXPECT_EQ(leida.has_value(), caso.mensaje.isEmpty()) << mensaje.toStdString();
        EXPECT_TRUE(mensaje.contains(caso.mensaje)) << mensaje.toStdString();
        EXPECT_FALSE(mensaje.contains(u"tabu"_s)) << mensaje.toStdString();
        QFile::remove(ruta);
    }
    for (const QFileDevice::Permission otros :
         {QFileDevice::ReadGroup, QFileDevice::WriteGroup, QFileDevice::ReadOther}) {
        EscribirArchivo(ruta, "clave = tabu\n");
        QFile::setPermissions(ruta, QFileDevice::ReadOwner | otros);
        const auto leida = ConfiguracionRed::Leer(ruta);
        ASSERT_FALSE(leida);
        EXPECT_NE(leida.error().mensaje.find("chmod 600"), std::string::npos);
        QFile::remove(ruta);
    }
    EXPECT_FALSE(ConfiguracionRed::Leer(ruta)) << "a file that is named must be there";
    EXPECT_TRUE(ConfiguracionRed::DelPrograma(carpeta.path())) << "guests need no file";
}

TEST(ConfiguracionRedTest, CadaEquipoTieneLoSuyoYLoDeTodos) {
    const QTemporaryDir carpeta;
    EscribirArchivo(carpeta.filePath(u"red.conf"_s),
                    "usuario = pepe\nclave = \" uno \"\ndominio = CASA\n"
                    "[CAJA1]\npuerto = 4455\nplazo = 3\n[caja2]\nusuario = ana\n");
    QFile::setPermissions(carpeta.filePath(u"red.conf"_s), QFileDevice::ReadOwner);
    const auto leida = ConfiguracionRed::DelPrograma(carpeta.path());
    ASSERT_TRUE(leida);
    const AccesoRed caja1 = leida->Para(u"caja1"_s);
    EXPECT_EQ(caja1.usuario, u"pepe"_s);
    EXPECT_EQ(caja1.clave, u" uno "_s);
    EXPECT_EQ(caja1.puerto, 4455);
    EXPECT_EQ(caja1.plazo_s, 3);
    const AccesoRed caja2 = leida->Para(u"CAJA2"_s);
    EXPECT_EQ(caja2.usuario, u"ana"_s);
    EXPECT_EQ(caja2.clave, QString()) << "another user's password is not tried";
    EXPECT_EQ(caja2.dominio, u"CASA"_s);
    EXPECT_EQ(leida->Para(u"BARRA"_s).puerto, 445);
}

}  // namespace
}  // namespace quimo::dayclose
