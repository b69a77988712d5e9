#include "data/recordset.h"

#include <QRegularExpression>

#include "data/consultar.h"

using namespace Qt::StringLiterals;

namespace quimo::data {

namespace {

FalloSql Fallo(qint64 numero, const QString& descripcion) {
    return FalloSql::De(numero, u"Recordset"_s, descripcion);
}

}  // namespace

QString TablaDeConsulta(const QString& consulta) {
    static const QRegularExpression kDesde(
        uR"(^\s*SELECT\s(?:(?!\b(?:FROM|UNION|INTO)\b).)*\bFROM\s+([\w#.\[\]]+)\s*(?:$|\b(?:WHERE|ORDER)\b(.*)$))"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch hallado = kDesde.match(consulta);
    if (!hallado.hasMatch()) return {};
    static const QRegularExpression kConjuntos(u"\\b(?:UNION|GROUP)\\b"_s,
                                               QRegularExpression::CaseInsensitiveOption);
    if (hallado.captured(2).contains(kConjuntos)) return {};
    QString tabla = hallado.captured(1);
    tabla.remove(u'[').remove(u']');
    return tabla.section(u'.', -1);
}

FalloSql Recordset::SinRegistro() {
    return Fallo(FalloSql::kSinRegistro,
                 u"BOF o EOF es verdadero, o el registro actual se eliminó."_s);
}

base::Result<std::shared_ptr<Recordset>, FalloSql> Recordset::Abrir(SqlConnection& conexion,
                                                                    const QString& consulta) {
    std::shared_ptr<Recordset> nuevo(new Recordset(conexion));
    nuevo->consulta_ = consulta;
    QUIMO_TRY_VOID(nuevo->Cargar());
    return nuevo;
}

std::shared_ptr<Recordset> Recordset::DeConjunto(SqlConnection& conexion, Conjunto conjunto) {
    std::shared_ptr<Recordset> nuevo(new Recordset(conexion));
    nuevo->conjunto_ = std::move(conjunto);
    for (qsizetype i = nuevo->Columnas().size() - 1; i >= 0; --i) {
        nuevo->indices_.insert(nuevo->Columnas()[i].nombre.toCaseFolded(), i);
    }
    nuevo->posicion_ = nuevo->Vacio() ? -1 : 0;
    return nuevo;
}

Recordset::Hecho Recordset::Cargar() {
    QUIMO_TRY(Conjunto leido, ConjuntoDe(conexion_.Ejecutar(consulta_)));
    conjunto_ = std::move(leido);
    indices_.clear();
    for (qsizetype i = conjunto_.columnas.size() - 1; i >= 0; --i) {
        indices_.insert(conjunto_.columnas[i].nombre.toCaseFolded(), i);
    }
    alta_.reset();
    cambios_.clear();
    borrada_ = false;
    posicion_ = Vacio() ? -1 : 0;
    return {};
}

Recordset::Hecho Recordset::Requery() {
    if (consulta_.isEmpty())
        return Fallo(FalloSql::kNoEscribible, u"El conjunto no se puede releer."_s);
    return Cargar();
}

Recordset::Hecho Recordset::MoveFirst() {
    CancelUpdate();
    borrada_ = false;
    if (Vacio()) return SinRegistro();
    posicion_ = 0;
    return {};
}

Recordset::Hecho Recordset::MoveLast() {
    CancelUpdate();
    borrada_ = false;
    if (Vacio()) return SinRegistro();
    posicion_ = RecordCount() - 1;
    return {};
}

Recordset::Hecho Recordset::MoveNext() {
    CancelUpdate();
    if (borrada_) {  // the next row slid into the deleted one's place
        borrada_ = false;
        return {};
    }
    if (Vacio() || Eof()) return SinRegistro();
    ++posicion_;
    return {};
}

Recordset::Hecho Recordset::MovePrevious() {
    CancelUpdate();
    if (Bof() || (Vacio() && !borrada_)) return SinRegistro();
    borrada_ = false;
    --posicion_;
    return {};
}

base::Result<Recordset::Marcador, FalloSql> Recordset::Bookmark() const {
    if (!HayActual() || borrada_) return SinRegistro();
    return posicion_ + 1;
}

Recordset::Hecho Recordset::IrA(Marcador marcador) {
    CancelUpdate();
    if (marcador < 1 || marcador > RecordCount()) return SinRegistro();
    borrada_ = false;
    posicion_ = marcador - 1;
    return {};
}

qsizetype Recordset::IndiceDe(const QString& nombre) const {
    return indices_.value(nombre.trimmed().toCaseFolded(), -1);
}

base::Result<QVariant, FalloSql> Recordset::Campo(const QString& nombre) const {
    const qsizetype indice = IndiceDe(nombre);
    if (indice < 0)
        return Fallo(FalloSql::kColumnaAusente, u"La consulta no tiene la columna "_s + nombre);
    return Campo(indice);
}

base::Result<QVariant, FalloSql> Recordset::Campo(qsizetype indice) const {
    if (indice < 0 || indice >= Columnas().size()) {
        return Fallo(FalloSql::kColumnaAusente, u"La consulta no tiene tantas columnas."_s);
    }
    if (alta_) return (*alta_)[indice];
    if (!HayActual() || borrada_) return SinRegistro();
    const auto cambio = cambios_.constFind(indice);
    if (cambio != cambios_.constEnd()) return *cambio;
    return conjunto_.filas[posicion_][indice];
}

base::Result<const DefinicionTabla*, FalloSql> Recordset::TablaEscribible() {
    if (!tabla_) {
        const QString nombre = TablaDeConsulta(consulta_);
        if (nombre.isEmpty())
            return Fallo(FalloSql::kNoEscribible, u"La consulta es de solo lectura."_s);
        QUIMO_TRY(DefinicionTabla definicion, conexion_.Describir(nombre));
        tabla_ = std::move(definicion);
    }
    return &*tabla_;
}

base::Result<QString, FalloSql> Recordset::CondicionDeClave(const Fila& fila,
                                                            QVector<QVariant>& valores) {
    QUIMO_TRY(const DefinicionTabla* tabla, TablaEscribible());
    if (tabla->clave.isEmpty()) {
        return Fallo(FalloSql::kNoEscribible,
                     u"La tabla "_s + tabla->nombre + u" no tiene llave."_s);
    }
    QStringList partes;
    for (const QString& columna : tabla->clave) {
        const qsizetype indice = IndiceDe(columna);
        if (indice < 0) {
            return Fallo(FalloSql::kNoEscribible, u"La consulta no trae la llave "_s + columna);
        }
        partes << u"["_s + columna + u"]=?"_s;
        valores << fila[indice];
    }
    return partes.join(u" AND "_s);
}

Recordset::Hecho Recordset::AddNew() {
    QUIMO_TRY(const DefinicionTabla* tabla, TablaEscribible());
    static_cast<void>(tabla);
    CancelUpdate();
    alta_ = Fila(Columnas().size());
    return {};
}

Recordset::Hecho Recordset::Asignar(const QString& nombre, const QVariant& valor) {
    const qsizetype indice = IndiceDe(nombre);
    if (indice < 0)
        return Fallo(FalloSql::kColumnaAusente, u"La consulta no tiene la columna "_s + nombre);
    if (alta_) {
        (*alta_)[indice] = valor;
    } else if (!HayActual() || borrada_) {
        return SinRegistro();
    }
    cambios_.insert(indice, valor);
    return {};
}

void Recordset::CancelUpdate() {
    alta_.reset();
    cambios_.clear();
}

Recordset::Hecho Recordset::Update() {
    if (alta_) return InsertarAlta();
    if (!HayActual() || borrada_) return SinRegistro();
    if (cambios_.isEmpty()) return {};
    QUIMO_TRY(const DefinicionTabla* tabla, TablaEscribible());
    QStringList asignaciones;
    QVector<QVariant> valores;
    for (auto it = cambios_.cbegin(); it != cambios_.cend(); ++it) {
        asignaciones << u"["_s + Columnas()[it.key()].nombre + u"]=?"_s;
        valores << it.value();
    }
    QUIMO_TRY(const QString condicion, CondicionDeClave(conjunto_.filas[posicion_], valores));
    QUIMO_TRY(const qint64 cambiadas,
              AfectadasDe(conexion_.Ejecutar(u"UPDATE ["_s + tabla->nombre + u"] SET "_s +
                                                 asignaciones.join(u',') + u" WHERE "_s + condicion,
                                             valores)));
    if (cambiadas == 0) {
        return Fallo(FalloSql::kFilaPerdida,
                     u"No se encuentra la fila por actualizar: otro usuario la borró "
                     u"o cambió su llave."_s);
    }
    Fila nueva = conjunto_.filas[posicion_];
    for (auto it = cambios_.cbegin(); it != cambios_.cend(); ++it)
        nueva[it.key()] = it.value();
    cambios_.clear();
    QVector<QVariant> clave;
    QUIMO_TRY(const QString relectura, CondicionDeClave(nueva, clave));
    return Releer(relectura, clave, posicion_);
}

Recordset::Hecho Recordset::InsertarAlta() {
    QUIMO_TRY(const DefinicionTabla* tabla, TablaEscribible());
    QStringList campos;
    QStringList marcas;
    QVector<QVariant> valores;
    for (auto it = cambios_.cbegin(); it != cambios_.cend(); ++it) {
        if (Columnas()[it.key()].nombre.compare(tabla->identidad, Qt::CaseInsensitive) == 0)
            continue;
        campos << u"["_s + Columnas()[it.key()].nombre + u"]"_s;
        marcas << u"?"_s;
        valores << it.value();
    }
    const QString sentencia =
        campos.isEmpty() ? u"INSERT INTO ["_s + tabla->nombre + u"] DEFAULT VALUES"_s
                         : u"INSERT INTO ["_s + tabla->nombre + u"] ("_s + campos.join(u',') +
                               u") VALUES ("_s + marcas.join(u',') + u")"_s;
    QUIMO_TRY_VOID(Correr(conexion_, sentencia, valores));
    Fila nueva = *alta_;
    if (!tabla->identidad.isEmpty() && IndiceDe(tabla->identidad) >= 0) {
        QUIMO_TRY(const Fila numero,
                  ConsultarFila(conexion_, u"SELECT CAST(@@IDENTITY AS INT) AS Clave"_s));
        nueva[IndiceDe(tabla->identidad)] = numero.value(0);
    }
    conjunto_.filas.append(nueva);
    posicion_ = RecordCount() - 1;
    CancelUpdate();
    borrada_ = false;
    QVector<QVariant> clave;
    auto condicion = CondicionDeClave(nueva, clave);
    if (!condicion) return {};  // without a key the row is known as it was typed
    return Releer(*condicion, clave, posicion_);
}

Recordset::Hecho Recordset::Releer(const QString& condicion, const QVector<QVariant>& valores,
                                   qsizetype lugar) {
    QStringList nombres;
    for (const Columna& columna : Columnas())
        nombres << u"["_s + columna.nombre + u"]"_s;
    QUIMO_TRY(const Fila leida, ConsultarFila(conexion_,
                                              u"SELECT "_s + nombres.join(u',') + u" FROM ["_s +
                                                  tabla_->nombre + u"] WHERE "_s + condicion,
                                              valores));
    if (!leida.isEmpty()) conjunto_.filas[lugar] = leida;
    return {};
}

Recordset::Hecho Recordset::Delete() {
    CancelUpdate();
    if (!HayActual() || borrada_) return SinRegistro();
    QUIMO_TRY(const DefinicionTabla* tabla, TablaEscribible());
    QVector<QVariant> valores;
    QUIMO_TRY(const QString condicion, CondicionDeClave(conjunto_.filas[posicion_], valores));
    QUIMO_TRY(const qint64 borradas,
              AfectadasDe(conexion_.Ejecutar(
                  u"DELETE FROM ["_s + tabla->nombre + u"] WHERE "_s + condicion, valores)));
    if (borradas == 0) {
        return Fallo(FalloSql::kFilaPerdida,
                     u"No se encuentra la fila por borrar: otro usuario ya la borró."_s);
    }
    conjunto_.filas.removeAt(posicion_);
    borrada_ = true;
    return {};
}

}  // namespace quimo::data
