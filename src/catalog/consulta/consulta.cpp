#include "catalog/consulta/consulta.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace quimo::catalog {

Consulta::Consulta(const FiltroDef& filtro, foundation::ClsAdo& ado) : filtro_(filtro), ado_(ado) {
    QStringList columnas;
    for (const ColumnaFiltro& columna : filtro_.columnas) {
        columnas << columna.columna.toString();
        columnas_.append({columna.titulo.toString(), columnas.last(), data::TipoSql::VarChar,
                          CodigosDe(columna)});
    }
    if (const auto todos = TiposDe(columnas)) {
        for (qsizetype i = 0; i < columnas_.size(); ++i)
            columnas_[i].tipo = (*todos)[i].tipo;
        return;
    }
    // One of them does not exist. It is told when somebody asks for it, not before.
    for (ColumnaFiltrable& columna : columnas_) {
        if (const auto suyo = TiposDe({columna.columna})) columna.tipo = suyo->first().tipo;
    }
}

std::optional<QVector<data::Columna>> Consulta::TiposDe(const QStringList& columnas) const {
    if (!ado_.Conectado()) return std::nullopt;
    const data::RespuestaSql respuesta = ado_.Conexion().Ejecutar(Unir(columnas, {u"1=0"_s}));
    if (respuesta.fallo || respuesta.resultados.isEmpty() || !respuesta.resultados[0].conjunto ||
        respuesta.resultados[0].conjunto->columnas.size() != columnas.size()) {
        return std::nullopt;
    }
    return respuesta.resultados[0].conjunto->columnas;
}

QString Consulta::Unir(const QStringList& seleccion, const QStringList& condiciones) const {
    static const QRegularExpression kAlFinal(u"\\s+WHERE$"_s,
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression kDentro(u"\\bWHERE\\b"_s,
                                            QRegularExpression::CaseInsensitiveOption);
    QString base = filtro_.base.trimmed().toString();
    const bool sin_condicion = base.contains(kAlFinal);
    base.remove(kAlFinal);
    if (!condiciones.isEmpty()) {
        const bool con_uniones = !sin_condicion && base.contains(kDentro);
        base += (con_uniones ? u" AND "_s : u" WHERE "_s) + condiciones.join(u" AND "_s);
    }
    return u"SELECT "_s + seleccion.join(u',') + u" FROM "_s + base;
}

base::Result<QString, CondicionMalEscrita> Consulta::Sentencia(
    std::span<const Condicion> condiciones) const {
    QStringList textos;
    for (const Condicion& condicion : condiciones) {
        QUIMO_CHECK(condicion.columna >= 0 && condicion.columna < columnas_.size());
        QUIMO_TRY(const QString texto, TextoDeCondicion(columnas_[condicion.columna], condicion));
        if (!texto.isEmpty()) textos << texto;
    }
    QStringList expresiones;
    for (const ColumnaFiltro& columna : filtro_.columnas)
        expresiones << ExpresionDe(columna);
    return Unir(expresiones, textos);
}

bool Consulta::Ejecutar(const QString& sentencia) {
    tabla_ = {};
    data::RecordsetPtr filas;
    bool hecho = false;
    {
        const foundation::PunteroOcupado ocupado(ado_.Dialogo());
        hecho = ado_.Consultar(filas, sentencia);
    }
    if (!hecho) {
        ado_.ManejaError();
        return false;
    }
    QStringList titulos;
    for (const ColumnaFiltrable& columna : columnas_)
        titulos << columna.titulo;
    tabla_ = TablaConsulta(titulos, {filas->Columnas(), filas->Filas()});
    return true;
}

}  // namespace quimo::catalog
