#include "data/candado.h"

#include <thread>
#include <utility>

#include "data/consultar.h"
#include "data/numeros_nativos.h"
#include "data/transaccion.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

constexpr int kSinServicio = -999;
constexpr int kArriendo_s = 120;
constexpr int kQuienMaximo = 200;

QString Literal(QString texto) { return u"'"_s + texto.replace(u'\'', u"''"_s) + u"'"_s; }

/// As the database keeps it: whole seconds, a wall clock.
QDateTime EnSegundos(const QDateTime& fecha) {
    const QTime hora(fecha.time().hour(), fecha.time().minute(), fecha.time().second());
    return {fecha.date(), hora, Qt::UTC};
}

base::Result<Fila, FalloSql> FilaDe(SqlConnection& conexion, const QString& nombre) {
    return ConsultarFila(conexion, u"SELECT Quien,Desde,Renovado FROM Candado WHERE Nombre=?"_s,
                         {nombre});
}

/// Who holds it. The holder writes its row just after it got the lock.
DuenoCandado Dueno(SqlConnection& conexion, const QString& nombre) {
    constexpr int kIntentos = 10;
    for (int i = 0; i < kIntentos; ++i) {
        const auto fila = FilaDe(conexion, nombre);
        if (fila && !fila.value().isEmpty()) {
            return {fila.value()[0].toString(), fila.value()[1].toDateTime()};
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return {};
}

base::Result<void, FalloSql> AsegurarTabla(SqlConnection& conexion) {
    const auto hay = ConsultarFila(conexion, u"SELECT COUNT(*) FROM Candado"_s);
    if (hay) return {};
    if (hay.error().Nativo() != nativo::kSinTabla) return hay.error();
    // A database of before. Somebody else may just be making it too.
    const auto hecha =
        Correr(conexion,
               u"CREATE TABLE Candado (Nombre VARCHAR(50) NOT NULL CONSTRAINT PK_Candado PRIMARY "
               "KEY, Quien VARCHAR(200) NOT NULL, Desde DATETIME NOT NULL, Renovado DATETIME NOT "
               "NULL)"_s);
    if (!hecha && hecha.error().Nativo() != nativo::kYaExiste) return hecha.error();
    return {};
}

}  // namespace

Candado::Candado(SqlConnection& conexion, Clase clase, QString nombre, QString quien,
                 QDateTime desde)
    : conexion_(&conexion),
      clase_(clase),
      nombre_(std::move(nombre)),
      quien_(std::move(quien)),
      desde_(std::move(desde)) {}

Candado::Candado(Candado&& otro) noexcept
    : conexion_(std::exchange(otro.conexion_, nullptr)),
      clase_(otro.clase_),
      nombre_(std::move(otro.nombre_)),
      quien_(std::move(otro.quien_)),
      desde_(std::move(otro.desde_)) {}

base::Result<CandadoODueno, FalloSql> Candado::Tomar(SqlConnection& conexion, const QString& nombre,
                                                     const QString& quien, const QDateTime& ahora) {
    QUIMO_TRY(
        const Fila fila,
        ConsultarFila(conexion,
                      u"DECLARE @r INT EXEC @r = sp_getapplock @Resource=%1,"
                      "@LockMode='Exclusive',@LockOwner='Session',@LockTimeout=0 SELECT @r"_s.arg(
                          Literal(nombre))));
    const int codigo = fila.value(0, kSinServicio).toInt();
    const QString quien_corto = quien.left(kQuienMaximo);
    if (codigo == kSinServicio) {
        return Arrendar({conexion, Clase::Arriendo, nombre, quien_corto, EnSegundos(ahora)});
    }
    if (codigo < 0) return CandadoODueno(Dueno(conexion, nombre));
    Candado candado(conexion, Clase::DeSesion, nombre, quien_corto, EnSegundos(ahora));
    // Who may make no table does without the row: the others read that somebody holds it.
    if (AsegurarTabla(conexion)) {
        QUIMO_TRY_VOID(candado.Anotar());
    }
    return CandadoODueno(std::move(candado));
}

base::Result<CandadoODueno, FalloSql> Candado::Arrendar(Candado candado) {
    SqlConnection& conexion = *candado.conexion_;
    QUIMO_TRY_VOID(AsegurarTabla(conexion));
    QUIMO_TRY(Transaccion transaccion, Transaccion::Iniciar(conexion));
    QUIMO_TRY(const Fila fila, FilaDe(conexion, candado.nombre_));
    const bool ocupado =
        !fila.isEmpty() && fila[2].toDateTime().addSecs(kArriendo_s) > candado.desde_;
    if (ocupado) {
        candado.conexion_ = nullptr;
        return CandadoODueno(DuenoCandado{fila[0].toString(), fila[1].toDateTime()});
    }
    const auto anotado = candado.Anotar();
    const auto hecho = anotado ? transaccion.Confirmar() : anotado;
    if (!hecho) {
        candado.conexion_ = nullptr;
        return hecho.error();
    }
    return CandadoODueno(std::move(candado));
}

base::Result<void, FalloSql> Candado::Anotar() {
    QUIMO_TRY_VOID(Correr(*conexion_, u"DELETE FROM Candado WHERE Nombre=?"_s, {nombre_}));
    return Correr(*conexion_,
                  u"INSERT INTO Candado (Nombre,Quien,Desde,Renovado) VALUES (?,?,?,?)"_s,
                  {nombre_, quien_, desde_, desde_});
}

bool Candado::Vigente() {
    if (conexion_ == nullptr) return false;
    if (clase_ == Clase::DeSesion) {
        const auto modo = ConsultarFila(
            *conexion_, u"SELECT APPLOCK_MODE('public',%1,'Session')"_s.arg(Literal(nombre_)));
        return modo && modo.value().value(0).toString() == "Exclusive"_L1;
    }
    const auto fila = FilaDe(*conexion_, nombre_);
    return fila && fila.value().value(0).toString() == quien_ &&
           fila.value().value(1).toDateTime() == desde_;
}

base::Result<bool, FalloSql> Candado::Renovado(const QDateTime& ahora) {
    QUIMO_TRY(const qint64 cambiadas,
              AfectadasDe(conexion_->Ejecutar(
                  u"UPDATE Candado SET Renovado=? WHERE Nombre=? AND Quien=? AND Desde=?"_s,
                  {EnSegundos(ahora), nombre_, quien_, desde_})));
    return cambiadas == 1;
}

bool Candado::Renovar(const QDateTime& ahora) {
    if (conexion_ == nullptr) return false;
    const auto renovado = Renovado(ahora);
    // The row only tells of a lock of the session; of a lease it is all there is.
    if (clase_ == Clase::Arriendo) return renovado && renovado.value();
    return Vigente();
}

Candado::~Candado() {
    if (conexion_ == nullptr || !conexion_->Abierta()) return;
    // What fails here goes with the session; a row without its lock is nobody's obstacle.
    static_cast<void>(Correr(*conexion_,
                             u"DELETE FROM Candado WHERE Nombre=? AND Quien=? AND Desde=?"_s,
                             {nombre_, quien_, desde_}));
    if (clase_ == Clase::Arriendo || !Vigente()) return;
    static_cast<void>(Correr(
        *conexion_,
        u"EXEC sp_releaseapplock @Resource=%1,@LockOwner='Session'"_s.arg(Literal(nombre_))));
}

}  // namespace quimo::data
