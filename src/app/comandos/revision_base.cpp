#include "app/comandos/revision_base.h"

#include <array>

#include "app/comandos/consola.h"
#include "data/consultar.h"
#include "dayclose/cierre/cierre_pendiente.h"
#include "dayclose/terminales/tablas_ventas.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

using data::Conjunto;
using data::Fila;
using data::RespuestaSql;
using dayclose::CierrePendiente;
using dayclose::Paso;

constexpr int kSoloInforme = 10;

struct Hallazgo {
    int numero = 0;
    const char16_t* que = nullptr;
    const char16_t* que_hacer = nullptr;
};

/// The numbers by which both engines tell an index, a reference or a value; any other is damage.
constexpr auto kHallazgos = std::to_array<Hallazgo>({
    {547, u"hay renglones que se refieren a otros que no existen",
     u"dé de alta lo que falta o corrija esos renglones"},
    {2570, u"hay un valor que su columna no admite", u"corrija ese valor"},
    {8951, u"un índice no concuerda con los renglones", u"restaure el respaldo"},
    {8952, u"un índice no concuerda con los renglones", u"restaure el respaldo"},
});
constexpr Hallazgo kDano = {0, u"una parte no se puede leer", u"restaure el respaldo"};

/// A sales table whose rows belong to rows of another, by columns of the same names.
struct Pertenencia {
    const char16_t* tabla = nullptr;
    const char16_t* que = nullptr;  ///< its rows without theirs
    const char16_t* duena = nullptr;
    std::array<const char16_t*, 2> por;
    std::array<const char16_t*, 2> clave;  ///< what a row is told by
};
constexpr std::array<const char16_t*, 2> kOrden = {u"ID_Comanda", nullptr};
constexpr std::array<const char16_t*, 2> kCuenta = {u"ID_Comanda", u"Num_Cuenta"};
constexpr std::array<const char16_t*, 2> kProducto = {u"ID_ProductosXCuenta", nullptr};
constexpr auto kPertenencias = std::to_array<Pertenencia>({
    {u"Cuenta", u"cuentas sin su orden", u"Comanda", kOrden, kCuenta},
    {u"ProductosXCuenta", u"productos sin su orden", u"Comanda", kOrden, kProducto},
    {u"Pago", u"pagos sin su cuenta", u"Cuenta", kCuenta, {u"ID_Pago", nullptr}},
    {u"Cortesia",
     u"cortesías sin su producto",
     u"ProductosXCuenta",
     kProducto,
     {u"ID_ProductosXCuenta", u"ID_Tipo_Cortesia"}},
    {u"Modificador",
     u"modificadores sin su producto",
     u"ProductosXCuenta",
     kProducto,
     {u"ID_ProductosXCuenta", u"ID_Tipo_Modificador"}},
    {u"ImpuestosXCuenta",
     u"impuestos sin su producto",
     u"ProductosXCuenta",
     kProducto,
     {u"ID_ProductosXCuenta", u"ID_Tipo_Impuesto"}},
});

const QString kDescartar =
    u"deje ese cierre (quimoctl cerrar ... --descartar) y traiga después lo que falte de sus "
    u"ventas "
    u"(--traer)"_s;

QStringList Nombres(const std::array<const char16_t*, 2>& columnas) {
    QStringList nombres;
    for (const char16_t* columna : columnas) {
        if (columna != nullptr) nombres << QString::fromUtf16(columna);
    }
    return nombres;
}

class Revision {
public:
    explicit Revision(data::SqlConnection& conexion) : conexion_(conexion) {}

    RevisionBase Hacer() {
        Motor();
        Contar();
        Cierre();
        for (const Pertenencia& pertenencia : kPertenencias)
            Huerfanos(pertenencia);
        return std::move(revision_);
    }

private:
    /// The rows of a query; what cannot be read is a finding about `de_que`.
    QVector<Fila> Filas(const QString& de_que, const QString& consulta) {
        auto filas = data::Consultar(conexion_, consulta);
        if (filas) return std::move(filas).value();
        const bool dicha =
            std::any_of(revision_.fallas.begin(), revision_.fallas.end(),
                        [&](const QString& falla) { return falla.startsWith(de_que + u": "_s); });
        if (!dicha) {
            Falla(de_que, u"no se pudo leer: "_s + TextoDeFallo(filas.error()),
                  u"restaure el respaldo"_s);
        }
        return {};
    }

    void Falla(const QString& de_que, const QString& que, const QString& que_hacer) {
        revision_.fallas << u"%1: %2. Qué hacer: %3."_s.arg(de_que, que, que_hacer);
    }

    void Motor() {
        RespuestaSql respuesta =
            conexion_.Ejecutar(u"DBCC CHECKDB WITH NO_INFOMSGS, ALL_ERRORMSGS, TABLERESULTS"_s);
        for (const data::ResultadoSql& resultado : respuesta.resultados) {
            if (resultado.conjunto) Hallazgos(*resultado.conjunto);
        }
        if (!respuesta.fallo) return;
        constexpr std::array kSinPermiso = {229, 262, 916, 2571, 7983};
        const bool sin_permiso = std::find(kSinPermiso.begin(), kSinPermiso.end(),
                                           respuesta.fallo->Nativo()) != kSinPermiso.end();
        Falla(u"Base de datos"_s, u"no se pudo revisar: "_s + TextoDeFallo(*respuesta.fallo),
              sin_permiso ? u"entre con un usuario db_owner de la base (QUIMO_BD_USUARIO y "
                            u"QUIMO_BD_CLAVE)"_s
                          : u"corrija la causa y repita la revisión"_s);
    }

    void Hallazgos(const Conjunto& conjunto) {
        const auto columna = [&](const QString& nombre) {
            const auto cual = std::find_if(
                conjunto.columnas.begin(), conjunto.columnas.end(), [&](const auto& otra) {
                    return otra.nombre.compare(nombre, Qt::CaseInsensitive) == 0;
                });
            return cual - conjunto.columnas.begin();
        };
        const auto numero = columna(u"Error"_s);
        const auto nivel = columna(u"Level"_s);
        const auto texto = columna(u"MessageText"_s);
        const auto objeto = columna(u"ObjectId"_s);
        for (const Fila& fila : conjunto.filas) {
            if (fila.value(nivel).toInt() <= kSoloInforme) continue;
            const int cual = fila.value(numero).toInt();
            const auto* conocido =
                std::find_if(kHallazgos.begin(), kHallazgos.end(),
                             [&](const Hallazgo& hallazgo) { return hallazgo.numero == cual; });
            const Hallazgo& hallazgo = conocido == kHallazgos.end() ? kDano : *conocido;
            const QString que_hacer = QString::fromUtf16(hallazgo.que_hacer);
            revision_.danada = revision_.danada || que_hacer == QString::fromUtf16(kDano.que_hacer);
            Falla(NombreDe(fila.value(objeto)),
                  u"%1 (%2: %3)"_s.arg(QString::fromUtf16(hallazgo.que))
                      .arg(cual)
                      .arg(fila.value(texto).toString()),
                  que_hacer);
        }
    }

    QString NombreDe(const QVariant& objeto) {
        if (!objeto.isValid() || objeto.toInt() == 0) return u"Base de datos"_s;
        const QVector<Fila> filas =
            Filas(u"Base de datos"_s, u"SELECT OBJECT_NAME(%1)"_s.arg(objeto.toInt()));
        const QString nombre = filas.value(0).value(0).toString();
        return nombre.isEmpty() ? u"Base de datos"_s : u"Tabla "_s + nombre;
    }

    void Contar() {
        const QVector<Fila> tablas =
            Filas(u"Base de datos"_s,
                  u"SELECT TABLE_SCHEMA,TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE "
                  u"TABLE_TYPE='BASE TABLE' ORDER BY TABLE_NAME"_s);
        for (const Fila& tabla : tablas) {
            QString nombre = tabla[1].toString();
            const QVector<Fila> filas = Filas(
                u"Tabla "_s + nombre, u"SELECT COUNT_BIG(*) FROM [%1].[%2]"_s.arg(
                                          tabla[0].toString(), nombre.replace(u']', u"]]"_s)));
            if (filas.isEmpty()) continue;
            ++revision_.tablas;
            revision_.renglones += filas[0][0].toLongLong();
        }
    }

    /// The close under way and its notes, read by one statement: a close that ends meanwhile
    /// empties both tables at once.
    void Cierre() {
        int cierres = 0;
        int notas = 0;
        for (const Fila& fila :
             Filas(u"Cierre del día"_s,
                   u"SELECT 1 AS Cierre,Fecha_Cierre,'' AS Marca,Paso FROM Cierre_Pendiente UNION "
                   u"ALL SELECT 0,Nombre_Term,Tabla,Estado FROM Cierre_Avance"_s)) {
            if (fila[0].toInt() == 1) {
                ++cierres;
                Pendiente(fila[1].toString(), fila[3].toInt());
            } else {
                ++notas;
                Nota(fila[1].toString(), fila[2].toString(), fila[3].toInt());
            }
        }
        if (cierres > 1) {
            Falla(u"Tabla Cierre_Pendiente"_s,
                  u"hay %1 cierres pendientes, y sólo puede haber uno"_s.arg(cierres), kDescartar);
        }
        if (cierres == 0 && notas > 0) {
            Falla(u"Tabla Cierre_Avance"_s,
                  u"notas de un cierre que no está pendiente: %1"_s.arg(notas),
                  u"haga el cierre del día, que las borra al empezar"_s);
        }
    }

    void Pendiente(const QString& fecha, int paso) {
        // A working date may be one that no calendar has (2902, month 13): only its form is told.
        QString va;
        if (paso == static_cast<int>(Paso::Reunir)) {
            va = u"se estaban reuniendo las ventas de las terminales"_s;
        } else if (paso == static_cast<int>(Paso::Transferir)) {
            va = u"se estaban copiando las ventas de las terminales"_s;
        } else if (paso == static_cast<int>(Paso::Distribuir)) {
            va = u"se estaban enviando las bases nuevas a las terminales"_s;
        }
        if (!foundation::EsFechaTrabajo(fecha) || va.isEmpty()) {
            Falla(u"Tabla Cierre_Pendiente"_s,
                  u"el cierre pendiente tiene una fecha o un paso imposible (%1, %2)"_s.arg(fecha)
                      .arg(paso),
                  kDescartar);
            return;
        }
        revision_.pendiente =
            u"El cierre del %1 no terminó: %2. Siga con él (quimoctl cerrar ... --continuar)."_s
                .arg(foundation::FechaTrabajoVisible(fecha), va);
    }

    /// Notes are a table's copy, or marks with names and states of their own.
    void Nota(const QString& terminal, const QString& marca, int estado) {
        int ultimo = CierrePendiente::kHecho;
        bool conocida = marca == QStringView(CierrePendiente::kArchivo) ||
                        marca == QStringView(CierrePendiente::kRecibido);
        for (const dayclose::DefCopia& copia : dayclose::Copias())
            conocida = conocida || marca == QStringView(copia.tabla);
        if (marca == QStringView(CierrePendiente::kEnvio)) {
            conocida = true;
            ultimo = CierrePendiente::kEnviando;
        } else if (marca == QStringView(CierrePendiente::kApartada)) {
            conocida = true;
            ultimo = static_cast<int>(dayclose::Apartada::SinArchivo);
        } else if (marca.startsWith(u"*version-"_s)) {
            conocida = true;
            ultimo = (1 << dayclose::Copias().size()) - 1;  // the tables copied, as bits
        }
        if (conocida && estado >= 0 && estado <= ultimo) return;
        Falla(u"Tabla Cierre_Avance"_s,
              u"la nota %1 de la terminal %2 no se entiende (estado %3)"_s.arg(marca, terminal)
                  .arg(estado),
              kDescartar);
    }

    void Huerfanos(const Pertenencia& pertenencia) {
        const QString tabla = QString::fromUtf16(pertenencia.tabla);
        QStringList iguales;
        for (const QString& columna : Nombres(pertenencia.por))
            iguales << u"d.%1=h.%1"_s.arg(columna);
        const QString duena = QString::fromUtf16(pertenencia.duena);
        const QString tablas = u"Tablas %1 y %2"_s.arg(tabla, duena);
        const QString desde = u" FROM %1 h WHERE NOT EXISTS (SELECT 1 FROM %2 d WHERE %3)"_s.arg(
            tabla, duena, iguales.join(u" AND "_s));
        const QVector<Fila> cuenta = Filas(tablas, u"SELECT COUNT(*)"_s + desde);
        const int cuantos = cuenta.value(0).value(0).toInt();
        if (cuantos == 0) return;
        const QString clave = Nombres(pertenencia.clave).join(u',');
        QStringList primeros;
        for (const Fila& fila :
             Filas(tablas, u"SELECT TOP 5 %1%2 ORDER BY %1"_s.arg(clave, desde))) {
            QStringList partes;
            for (const QVariant& parte : fila)
                partes << parte.toString();
            primeros << partes.join(u'/');
        }
        revision_.avisos << u"Tabla %1, %2: %3 (%4: %5%6)."_s.arg(
            tabla, QString::fromUtf16(pertenencia.que), QString::number(cuantos), clave,
            primeros.join(u", "_s), cuantos > primeros.size() ? u"..."_s : QString());
    }

    data::SqlConnection& conexion_;
    RevisionBase revision_;
};

}  // namespace

RevisionBase RevisarBase(data::SqlConnection& conexion) { return Revision(conexion).Hacer(); }

}  // namespace quimo::app
