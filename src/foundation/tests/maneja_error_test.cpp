#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "foundation/cls_ado.h"
#include "support/dialogos_guion.h"

using namespace Qt::StringLiterals;

namespace quimo::foundation {
namespace {

/// A connection whose every statement fails in the same way.
class ConexionQueFalla final : public data::SqlConnection {
public:
    explicit ConexionQueFalla(data::FalloSql fallo) : fallo_(std::move(fallo)) {}
    data::RespuestaSql Ejecutar(const QString& /*tsql*/,
                                const QVector<QVariant>& /*valores*/) override {
        data::RespuestaSql respuesta;
        respuesta.fallo = fallo_;
        return respuesta;
    }
    base::Result<void, data::FalloSql> Iniciar() override { return fallo_; }
    base::Result<void, data::FalloSql> Confirmar() override { return fallo_; }
    base::Result<void, data::FalloSql> Revertir() override { return fallo_; }
    bool EnTransaccion() const override { return false; }
    std::uint64_t TransaccionActual() const override { return 0; }
    base::Result<data::DefinicionTabla, data::FalloSql> Describir(
        const QString& /*tabla*/) override {
        return fallo_;
    }
    bool Abierta() const override { return true; }
    void Cerrar() override {}

private:
    data::FalloSql fallo_;
};

constexpr auto kPrefijo = "[Microsoft][ODBC SQL Server Driver][SQL Server]"_L1;

data::FalloSql Nativo(qint64 numero, int nativo, const QString& descripcion,
                      const QString& estado = u"42000"_s) {
    return {numero, {data::ErrorProveedor{estado, nativo, u"Origen"_s, descripcion}}};
}

/// A failing statement through the real object: what the user was shown, what the log holds.
struct Escena {
    QTemporaryDir carpeta;
    pruebas::DialogosGuion dialogos;
    pruebas::RelojFijo reloj;
    ClsBitacora bitacora;
    ClsAdo ado;

    explicit Escena(const data::FalloSql& fallo)
        : bitacora(Opciones(carpeta.filePath(u"log"_s)), dialogos, reloj),
          ado(
              [fallo](const data::DatosConexion&)
                  -> base::Result<std::unique_ptr<data::SqlConnection>, data::FalloSql> {
                  return std::unique_ptr<data::SqlConnection>(new ConexionQueFalla(fallo));
              },
              dialogos, bitacora) {
        ado.CpsTitulo = u"Título"_s;
        ado.CpsMen_LLave_Repetida = u"Ya existe la categoría"_s;
        QString texto;
        EXPECT_TRUE(ado.Conectar(texto, texto, texto, texto));
    }

    static OpcionesBitacora Opciones(const QString& archivo) {
        OpcionesBitacora opciones;
        opciones.PArchivoLog = archivo;
        opciones.PUsuario = u"maria"_s;
        opciones.PVersion = u"1.2.3"_s;
        opciones.PMsgBox = false;
        return opciones;
    }

    /// The parts of every entry after the first ("Iniciando"), joined by |.
    QStringList Entradas() const {
        QFile archivo(carpeta.filePath(u"log"_s));
        EXPECT_TRUE(archivo.open(QIODevice::ReadOnly));
        QStringList entradas;
        for (const QString& linea : QString::fromUtf8(archivo.readAll()).split(u'\n')) {
            if (!linea.isEmpty()) entradas << linea.split(u'\t').mid(5).join(u'|');
        }
        return entradas.mid(1);
    }
};

struct CasoError {
    const char* nombre = nullptr;
    data::FalloSql fallo;
    QStringList mostrado;
    QStringList bitacora;
    bool sin_servidor = false;
};

const QString kConflicto = kPrefijo +
                           u"DELETE statement conflicted with COLUMN REFERENCE constraint 'FK_P'. "
                           u"The conflict occurred in "
                           u"database 'c', table 'Productos', column 'ID_Categoria'."_s;
const QString kPerdida = u"Se perdio la conexión con el servidor"_s;

QVector<CasoError> Casos() {
    return {
        {"sin registro", Nativo(3021, 0, u"d"_s), {u"[i] |no hay registros"_s}, {}},
        {"propio", Nativo(1, 0, u"texto"_s), {u"[-] |texto"_s}, {}},
        {"cerrada", Nativo(3709, 0, u"d"_s), {}, {}},
        {"acceso negado", Nativo(data::FalloSql::kAccesoNegado, 18456, u"d"_s, u"28000"_s), {}, {}},
        {"acceso con otro estado",
         Nativo(data::FalloSql::kAccesoNegado, 7, u"d"_s, u"08001"_s),
         {},
         {u"Descripcion d|"_s, u"Number 7|"_s, u"Source Origen|"_s, u"Sqlstate 08001|"_s}},
        {"sin filas",
         Nativo(40022, 0, u"d"_s),
         {u"[i] Título|No hay registros"_s},
         {u"No hay registros|ClsRdo_Error|d|"_s}},
        {"perdida",
         Nativo(data::FalloSql::kConexionPerdida, 0, u"d"_s),
         {u"[x] Título|"_s + kPerdida},
         {kPerdida + u"|Fatal|ClsRdo_Error|d|"_s}},
        {"otro",
         Nativo(0x80040E99, 5, u"raro"_s),
         {u"[-] |Error no controlado en BD -2147217767    raro"_s},
         {u"Error no controlado en BD |-2147217767|    |raro|"_s}},
        {"indice repetido",
         Nativo(data::FalloSql::kIntegridad, 2601, u"d"_s),
         {u"[!] Título|Ya existe la categoría"_s},
         {u"Ya existe la categoría|ClsRdo_Error|"_s, u"d|ClsRdo_Error|"_s}},
        {"llave repetida",
         Nativo(data::FalloSql::kIntegridad, 2627, u"d"_s),
         {u"[!] Título|Ya existe la categoría"_s},
         {u"Ya existe la categoría|ClsRdo_Error|"_s}},
        {"en uso",
         Nativo(data::FalloSql::kIntegridad, 547, kConflicto),
         {u"[x] |No se puede borrar este registro por estar en uso en la tabla 'Productos'"_s},
         {kConflicto + u"|ClsRdo_Error|"_s}},
        {"en uso sin comas",
         Nativo(data::FalloSql::kIntegridad, 547, u"conflicto"_s),
         {u"[x] |No se puede borrar este registro por estar en uso en la tabla "_s},
         {u"conflicto|ClsRdo_Error|"_s}},
        {"corte",
         Nativo(data::FalloSql::kSentencia, 232, u"d"_s),
         {u"[x] Título|"_s + kPerdida},
         {kPerdida + u"|Fatal|ClsRdo_Error|"_s}},
        {"sin servidor",
         Nativo(data::FalloSql::kServidorAusente, 6, u"d"_s),
         {u"[x] Título|No se pudo encontrar al servidor"_s},
         {u"No se pudo encontrar al servidor|Fatal|ClsRdo_Error|"_s},
         true},
        {"sin nombre",
         Nativo(data::FalloSql::kServidorAusente, 0, u"d"_s),
         {u"[x] |El nombre del DNS es incorrecto"_s},
         {u"El nombre del DNS es incorrecto|Fatal|ClsRdo_Error|"_s},
         true},
        {"usuario",
         Nativo(data::FalloSql::kSentencia, 4002, u"d"_s),
         {u"[x] Título|Usuario incorrecto"_s},
         {u"Usuario incorrecto|ClsRdo_Error|"_s}},
        {"levantado",
         Nativo(data::FalloSql::kSentencia, 50000, kPrefijo + u"Faltan datos"_s),
         {u"[!] |Faltan datos"_s},
         {u"Faltan datos|48|ClsRdo_Error|"_s}},
        {"cualquiera",
         Nativo(data::FalloSql::kSentencia, 8134, u"Divide by zero"_s),
         {u"[-] |Divide by zero"_s},
         {u"Divide by zero|ClsRdo_Error|"_s}},
    };
}

TEST(ManejaError, CadaFalloDiceYAnotaLoSuyo) {
    for (const CasoError& caso : Casos()) {
        Escena escena(caso.fallo);
        data::RecordsetPtr filas;
        EXPECT_FALSE(escena.ado.Consultar(filas, u"SELECT 1"_s));
        EXPECT_EQ(escena.ado.ManejaError(), caso.sin_servidor) << caso.nombre;
        EXPECT_EQ(escena.dialogos.Mostrados(), caso.mostrado) << caso.nombre;
        EXPECT_EQ(escena.Entradas(), caso.bitacora) << caso.nombre;
        EXPECT_FALSE(escena.ado.Pendiente()) << caso.nombre;
    }
}

TEST(ManejaError, SinMensajeGuardaElDetalleMenosEnElIndiceRepetido) {
    struct Caso {
        int nativo;
        QString descripcion;
        qsizetype mostrados;
        QString error;
    };
    const Caso casos[] = {
        {2601, u"d"_s, 1, QString()},
        {2627, u"d"_s, 0, QString()},
        {547, u"a, table 'T', b"_s, 0, u"'T'"_s},
        {8134, u"entre cero"_s, 0, u"entre cero"_s},
    };
    for (const Caso& caso : casos) {
        Escena escena(Nativo(data::FalloSql::kIntegridad, caso.nativo, caso.descripcion));
        escena.ado.CbNoMensaje = true;
        EXPECT_FALSE(escena.ado.Borrar(nullptr, u"T"_s, std::nullopt, u"a=1"_s));
        EXPECT_EQ(escena.dialogos.Mostrados().size(), caso.mostrados) << caso.nativo;
        EXPECT_EQ(escena.ado.CsError, caso.error) << caso.nativo;
    }
}

TEST(Conectar, LaFallaGeneralSeReintentaConElAccesoPropio) {
    QTemporaryDir carpeta;
    pruebas::DialogosGuion dialogos;
    pruebas::RelojFijo reloj;
    ClsBitacora bitacora(Escena::Opciones(carpeta.filePath(u"log"_s)), dialogos, reloj);
    QStringList usuarios;
    ClsAdo ado(
        [&](const data::DatosConexion& datos)
            -> base::Result<std::unique_ptr<data::SqlConnection>, data::FalloSql> {
            usuarios << datos.usuario + u'/' + datos.clave;
            if (usuarios.size() < 4) return Nativo(data::FalloSql::kOtroAlAbrir, 0, u"falla"_s);
            return Nativo(data::FalloSql::kServidorAusente, 6, u"no está"_s);
        },
        dialogos, bitacora);
    QString servidor = u"s"_s;
    QString base = u"b"_s;
    QString usuario = u"ana"_s;
    QString clave = u"x"_s;
    EXPECT_FALSE(ado.Conectar(servidor, base, usuario, clave));
    EXPECT_EQ(usuarios, (QStringList{u"ana/x"_s, u"norsa/lumex7310"_s, u"norsa/lumex7310"_s,
                                     u"norsa/lumex7310"_s}));
    EXPECT_EQ(usuario, u"norsa"_s);
    EXPECT_EQ(clave, u"lumex7310"_s);
    EXPECT_EQ(dialogos.Mostrados(), QStringList{u"[x] |No se pudo encontrar al servidor"_s});
}

}  // namespace
}  // namespace quimo::foundation
