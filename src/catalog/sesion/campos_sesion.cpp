#include "catalog/sesion/campos_sesion.h"

#include <algorithm>

#include "catalog/sesion/valor_columna.h"
#include "data/valores.h"
#include "data/valores_escritos.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

CamposSesion::CamposSesion(const EditorDef& def)
    : def_(&def), elegidos_(Cantidad(), -1), listas_(Cantidad()) {
    for (qsizetype i = 0; i < Cantidad(); ++i)
        valores_ << QString();
}

qsizetype CamposSesion::IndiceDe(QStringView control) const {
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        if (Def(i).control == control || Def(i).oculto == control) return i;
    }
    return -1;
}

bool CamposSesion::CargarListas(foundation::ClsAdo& ado) {
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        const ListaDef* const lista = Def(i).lista;
        if (lista == nullptr) continue;
        auto entradas = foundation::LlenaCombo(ado, lista->consulta.toString());
        if (!entradas) return ado.Reportar(std::move(entradas).error());
        listas_[i] = *std::move(entradas);
        if (!lista->ninguno.isEmpty()) {
            listas_[i].append({lista->ninguno.toString(), lista->dato_ninguno});
        }
    }
    return true;
}

QStringList CamposSesion::Entradas(qsizetype campo) const {
    QStringList textos;
    for (const ItemCodigo& item : Def(campo).codigos)
        textos << item.texto.toString();
    for (const foundation::EntradaCombo& entrada : listas_[campo])
        textos << entrada.texto;
    return textos;
}

QString CamposSesion::Visible(qsizetype campo, const QVariant& guardado) const {
    const CampoDef& def = Def(campo);
    if (def.mascara != nullptr) return def.mascara->mostrar(guardado);
    const QString valor = data::TextoDeValor(guardado);
    if (def.tipo != TipoCampo::Codigo && def.tipo != TipoCampo::Lista) return valor;
    return Entradas(campo).value(EntradaDe(campo, valor));
}

int CamposSesion::LargoMaximo(qsizetype campo, const data::RecordsetPtr& conjunto) const {
    const CampoDef& def = Def(campo);
    if (conjunto == nullptr || def.tipo != TipoCampo::Texto || def.columna.isEmpty()) return 0;
    const qsizetype columna = conjunto->IndiceDe(def.columna.toString());
    return columna < 0 ? 0 : std::max(conjunto->Columnas()[columna].longitud, 0);
}

void CamposSesion::Mostrar(const data::RecordsetPtr& conjunto) {
    const bool hay = conjunto != nullptr && conjunto->HayActual();
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        if (Def(i).columna.isEmpty()) continue;
        QVariant guardado;
        if (hay) {
            auto leido = conjunto->Campo(Def(i).columna.toString());
            if (leido) guardado = *std::move(leido);
        }
        MostrarCampo(i, guardado);
        if (!hay) elegidos_[i] = -1;
    }
}

void CamposSesion::MostrarCampo(qsizetype campo, const QVariant& guardado) {
    const CampoDef& def = Def(campo);
    QString texto = data::TextoDeValor(guardado);
    if (def.tipo == TipoCampo::Casilla) texto = texto == u"1"_s ? u"1"_s : u"0"_s;
    if (def.mascara != nullptr) texto = def.mascara->mostrar(guardado);
    valores_[campo] = texto;
    if (def.partes != nullptr) def.partes->partir(texto, valores_[campo], valores_[campo + 1]);
    ElegirPorValor(campo);
}

int CamposSesion::EntradaDe(qsizetype campo, const QString& valor) const {
    const CampoDef& def = Def(campo);
    if (def.tipo == TipoCampo::Codigo) {
        const auto hallado =
            std::find_if(def.codigos.begin(), def.codigos.end(),
                         [&](const ItemCodigo& item) { return item.codigo == valor; });
        return hallado == def.codigos.end() ? -1 : static_cast<int>(hallado - def.codigos.begin());
    }
    if (def.tipo != TipoCampo::Lista) return -1;
    const auto& lista = listas_[campo];
    if (valor.isEmpty() && !def.lista->ninguno.isEmpty()) return static_cast<int>(lista.size()) - 1;
    int entrada = -1;
    for (int i = 0; i < lista.size(); ++i) {
        if (QString::number(lista[i].dato) == valor) entrada = i;
    }
    return entrada;
}

void CamposSesion::PonerIniciales() {
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        valores_[i] = Def(i).inicial.toString();
        ElegirPorValor(i);
        // Nothing chosen yet is not the same as the entry for NULL.
        if (Def(i).tipo == TipoCampo::Lista) elegidos_[i] = -1;
    }
}

void CamposSesion::Escribir(qsizetype campo, const QString& texto) {
    valores_[campo] = Compuesto(texto);
    if (!Def(campo).oculto.isEmpty()) ElegirPorValor(campo);
}

void CamposSesion::Elegir(qsizetype campo, int entrada) {
    const CampoDef& def = Def(campo);
    elegidos_[campo] = entrada;
    valores_[campo].clear();
    if (entrada < 0) return;
    if (def.tipo == TipoCampo::Codigo) {
        valores_[campo] = def.codigos[static_cast<std::size_t>(entrada)].codigo.toString();
    } else if (!EsNulo(campo)) {
        valores_[campo] = QString::number(listas_[campo].value(entrada).dato);
    }
}

std::optional<ObjecionDeCampo> CamposSesion::Dejar(qsizetype campo) {
    const MascaraDef* const mascara = Def(campo).mascara;
    if (mascara == nullptr) return std::nullopt;
    const QString reducido = mascara->reducir(valores_[campo]);
    const QString objecion = mascara->objecion(reducido);
    if (objecion.isEmpty()) {
        valores_[campo] = mascara->mostrar(reducido);
        return std::nullopt;
    }
    valores_[campo].clear();
    return ObjecionDeCampo{objecion, Def(campo).control.toString()};
}

QString CamposSesion::Falta(qsizetype campo) const {
    const CampoDef& def = Def(campo);
    if (!def.falta.isEmpty()) {
        // What the control shows: of a combo box its text, whatever its hidden box holds.
        const bool combo = !def.oculto.isEmpty();
        const bool vacio = combo ? elegidos_[campo] < 0 : TextoParaGuardar(campo).isEmpty();
        return vacio ? def.falta.toString() : QString();
    }
    const bool no_vacio = def.tag.contains(u"NoVacio"_s, Qt::CaseInsensitive);
    return no_vacio && valores_[campo].isEmpty() ? u" de "_s + def.etiqueta.toString() : QString();
}

std::optional<ObjecionDeCampo> CamposSesion::Objecion(const data::Recordset& conjunto) const {
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        const QString falta = Falta(i);
        if (falta.isEmpty()) continue;
        return ObjecionDeCampo{u"Falta el campo "_s + falta, Def(i).control.toString()};
    }
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        const CampoDef& def = Def(i);
        if (def.columna.isEmpty() || def.tipo == TipoCampo::Clave || EsNulo(i)) continue;
        const qsizetype columna = conjunto.IndiceDe(def.columna.toString());
        if (columna < 0) continue;
        const auto valor = ValorParaColumna(conjunto.Columnas()[columna], def.etiqueta.toString(),
                                            TextoParaGuardar(i));
        if (!valor) return ObjecionDeCampo{valor.error().texto, def.control.toString()};
    }
    return std::nullopt;
}

QString CamposSesion::TextoParaGuardar(qsizetype campo) const {
    const CampoDef& def = Def(campo);
    if (def.mascara != nullptr) return def.mascara->reducir(valores_[campo]);
    if (def.partes != nullptr) return def.partes->unir(valores_[campo], valores_[campo + 1]);
    if (def.tipo != TipoCampo::Numero) return valores_[campo];
    return data::NumeroEscrito(valores_[campo]).value_or(valores_[campo]);
}

bool CamposSesion::EsNulo(qsizetype campo) const {
    const ListaDef* const lista = Def(campo).lista;
    if (lista == nullptr) return false;
    if (elegidos_[campo] < 0) return valores_[campo].isEmpty();
    const foundation::EntradaCombo entrada = listas_[campo].value(elegidos_[campo]);
    if (lista->ninguno.isEmpty()) return false;
    return lista->nulo_por == NuloPor::Texto ? entrada.texto == lista->ninguno
                                             : entrada.dato == lista->dato_ninguno;
}

QString CamposSesion::Asignaciones(const data::Recordset& conjunto) const {
    QStringList asignaciones;
    for (qsizetype i = 1; i < Cantidad(); ++i) {
        const QStringView columna = Def(i).columna;
        if (columna.isEmpty()) continue;
        const QString texto = TextoParaGuardar(i);
        const qsizetype lugar = conjunto.IndiceDe(columna.toString());
        const bool comillas = lugar >= 0 && data::EsTexto(conjunto.Columnas()[lugar].tipo);
        QString valor = texto.trimmed().isEmpty() ? u"NULL"_s : texto;
        if (comillas) valor = u'\'' + data::DuplicaApostrofes(texto) + u'\'';
        if (EsNulo(i)) valor = u"NULL"_s;
        asignaciones << columna.toString() + u'=' + valor;
    }
    return asignaciones.join(u',');
}

base::Result<void, data::FalloSql> CamposSesion::Asignar(data::Recordset& conjunto) const {
    for (qsizetype i = 0; i < Cantidad(); ++i) {
        const CampoDef& def = Def(i);
        if (def.columna.isEmpty()) continue;
        if (def.tipo == TipoCampo::Clave && valores_[i].isEmpty()) continue;
        const QString columna = def.columna.toString();
        const qsizetype lugar = conjunto.IndiceDe(columna);
        if (lugar < 0) continue;
        const auto valor = ValorParaColumna(conjunto.Columnas()[lugar], def.etiqueta.toString(),
                                            TextoParaGuardar(i));
        QUIMO_CHECK(valor.has_value());
        QUIMO_TRY_VOID(conjunto.Asignar(columna, EsNulo(i) ? QVariant() : *valor));
    }
    return {};
}

}  // namespace quimo::catalog
