#include "catalog/sesion/detalle_sesion.h"

#include <algorithm>

#include <QStringBuilder>

#include "base/decimal.h"
#include "catalog/sesion/valor_columna.h"
#include "data/valores.h"
#include "data/valores_escritos.h"
#include "grid/tabulado.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

using data::FalloSql;
using foundation::Icono;

namespace {

constexpr int kRenglonesMax = 5000;
constexpr int kClaveDigitosMax = 9;

QString TextoDeCelda(const QVariant& valor, TipoCeldaDetalle tipo) {
    if (tipo == TipoCeldaDetalle::Fecha && valor.isValid())
        return data::TextoDeFecha(valor.toDateTime().date());
    return data::TextoDeValor(valor);
}

bool EsClave(const QString& texto) {
    return !texto.isEmpty() && texto.size() <= kClaveDigitosMax &&
           std::all_of(texto.begin(), texto.end(),
                       [](QChar letra) { return letra >= u'0' && letra <= u'9'; });
}

}  // namespace

bool ContarFallo(foundation::ClsAdo& ado) {
    if (!ado.Pendiente()) return false;
    const FalloSql fallo = *ado.Pendiente();
    constexpr int kNativoPerdida = 232;
    if (fallo.numero == FalloSql::kConexionCerrada) {
        ado.Dialogo().Avisar(u"Se perdio la conexión con el servidor"_s, Icono::Critico,
                             ado.CpsTitulo);
    }
    ado.ManejaError();
    return fallo.numero == FalloSql::kConexionCerrada ||
           fallo.numero == FalloSql::kConexionPerdida || fallo.Nativo() == kNativoPerdida;
}

void DetalleSesion::Avisar(const QString& texto) {
    ado_->Dialogo().Avisar(texto, Icono::Exclamacion, ado_->CpsTitulo);
}

bool DetalleSesion::CargarLista() {
    entradas_.clear();
    if (def_->lista.isEmpty()) return true;
    data::RecordsetPtr filas;
    if (!ado_->Consultar(filas, def_->lista.toString())) {
        ContarFallo(*ado_);
        return false;
    }
    for (const data::Fila& fila : filas->Filas())
        entradas_.append({data::TextoDeValor(fila.value(1)), fila.value(0).toInt()});
    return true;
}

bool DetalleSesion::Cargar(const QString& clave) {
    Vaciar();
    cargado_ = false;
    data::RecordsetPtr filas;
    if (!ado_->Consultar(filas, def_->consulta % clave)) {
        ContarFallo(*ado_);
        return false;
    }
    cargado_ = true;
    columnas_ = filas->Columnas();
    for (const data::Fila& fila : filas->Filas()) {
        Renglon renglon;
        for (qsizetype c = 0; c < std::ssize(def_->columnas); ++c) {
            const TipoCeldaDetalle tipo = Columna(c).tipo;
            renglon.celdas << TextoDeCelda(fila.value(c), tipo);
        }
        renglon.cargadas = renglon.celdas;
        renglones_ << renglon;
    }
    if (orden_ >= 0) Ordenar(orden_, sentido_);
    return true;
}

void DetalleSesion::Vaciar() {
    renglones_.clear();
    cambiado_ = false;
    cargado_ = true;
}

bool DetalleSesion::PuedeAgregar(int fila_actual) const {
    if (renglones_.size() >= kRenglonesMax) return false;
    if (!def_->alta_solo_al_final) return true;
    for (qsizetype fila = renglones_.size() - 1; fila >= 0; --fila) {
        if (renglones_[fila].marca != Marca::Borrada) return fila == fila_actual;
    }
    return true;
}

int DetalleSesion::Agregar(int fila_actual) {
    return PuedeAgregar(fila_actual) ? AgregarAlFinal() : -1;
}

int DetalleSesion::AgregarAlFinal() {
    Renglon nuevo;
    for (const ColumnaDetalle& columna : def_->columnas)
        nuevo.celdas << columna.inicial.toString();
    nuevo.marca = Marca::Nueva;
    renglones_ << nuevo;
    cambiado_ = true;
    return static_cast<int>(renglones_.size()) - 1;
}

void DetalleSesion::Borrar(int fila) {
    if (fila < 0 || fila >= renglones_.size()) return;
    cambiado_ = true;
    if (renglones_[fila].marca == Marca::Nueva) {
        renglones_.removeAt(fila);
    } else {
        renglones_[fila].marca = Marca::Borrada;
    }
}

bool DetalleSesion::Editable(int fila, int columna) const {
    switch (Columna(columna).cambiable) {
        case Cambiable::Siempre:
            return true;
        case Cambiable::SoloNuevas:
            return renglones_[fila].marca == Marca::Nueva;
        case Cambiable::No:
            break;
    }
    return false;
}

bool DetalleSesion::AceptarDeLista(Renglon& renglon, int columna, const QString& texto) {
    for (const foundation::EntradaCombo& entrada : entradas_) {
        if (entrada.texto.compare(texto.trimmed(), Qt::CaseInsensitive) != 0) continue;
        renglon.celdas[columna] = entrada.texto;
        renglon.celdas[def_->celda_clave] = QString::number(entrada.dato);
        return true;
    }
    return false;
}

DetalleSesion::Resultado DetalleSesion::AceptarCodigo(Renglon& renglon, int columna,
                                                      const QString& texto) {
    const RevisionDef& revision = *def_->revision;
    const QString codigo = texto.trimmed();
    renglon.celdas[columna] = codigo;
    renglon.celdas[revision.celda_nombre].clear();
    if (codigo.isEmpty()) return {};
    if (EsClave(codigo)) {
        const auto nombre = foundation::ValorCampo(*ado_, revision.tabla.toString(),
                                                   revision.columna_nombre.toString(),
                                                   revision.columna_clave % u'=' % codigo);
        if (nombre) {
            renglon.celdas[revision.celda_nombre] = *nombre;
            return {};
        }
        if (nombre.error().numero != FalloSql::kSinRegistro) {
            renglon.celdas[columna].clear();
            ado_->Reportar(nombre.error());
            return {false, QString()};
        }
    }
    renglon.celdas[columna].clear();
    return {false, revision.mensaje.toString()};
}

DetalleSesion::Resultado DetalleSesion::AceptarNumero(Renglon& renglon, int columna,
                                                      const QString& texto) {
    const ColumnaDetalle& def = Columna(columna);
    if (texto.trimmed().isEmpty()) {
        renglon.celdas[columna] = def.inicial.toString();
        return {};
    }
    const auto numero = data::NumeroEscrito(texto);
    if (!numero) return {false, texto + u" no es un número"_s};
    QString valor = *numero;
    if (def.tipo == TipoCeldaDetalle::Entero) valor = valor.section(u'.', 0, 0);
    if (columna < columnas_.size()) {
        const auto leido = ValorParaColumna(columnas_[columna], def.titulo.toString(), valor);
        if (!leido) return {false, leido.error().texto};
    }
    renglon.celdas[columna] = valor;
    return {};
}

DetalleSesion::Resultado DetalleSesion::Aceptar(Renglon& renglon, int columna,
                                                const QString& escrito) {
    const QString texto = Compuesto(escrito);
    switch (Columna(columna).tipo) {
        case TipoCeldaDetalle::Codigo:
            return AceptarCodigo(renglon, columna, texto);
        case TipoCeldaDetalle::Lista:
            if (AceptarDeLista(renglon, columna, texto)) return {};
            return {false, texto + u" no está en la lista"_s};
        case TipoCeldaDetalle::Entero:
        case TipoCeldaDetalle::Dinero:
        case TipoCeldaDetalle::Numero:
            return AceptarNumero(renglon, columna, texto);
        case TipoCeldaDetalle::Casilla:
            renglon.celdas[columna] = texto == u"1"_s ? u"1"_s : u"0"_s;
            return {};
        case TipoCeldaDetalle::Fecha: {
            if (texto.trimmed().isEmpty()) {
                renglon.celdas[columna].clear();
                return {};
            }
            auto fecha = FechaEscrita(texto);
            if (!fecha) return {false, fecha.error().texto};
            renglon.celdas[columna] = *fecha;
            return {};
        }
        case TipoCeldaDetalle::Oculta:
        case TipoCeldaDetalle::Nombre:
        case TipoCeldaDetalle::Marca:
            break;
    }
    return {false, QString()};
}

bool DetalleSesion::Escribir(int fila, int columna, const QString& texto) {
    if (fila < 0 || fila >= renglones_.size() || !Editable(fila, columna)) return false;
    Renglon& renglon = renglones_[fila];
    const QStringList antes = renglon.celdas;
    const Resultado resultado = Aceptar(renglon, columna, texto);
    if (renglon.celdas != antes) {
        cambiado_ = true;
        if (renglon.marca == Marca::Ninguna) renglon.marca = Marca::Modificada;
    }
    if (!resultado.objecion.isEmpty()) Avisar(resultado.objecion);
    return resultado.bien;
}

void DetalleSesion::Pegar(int fila, const QVector<int>& columnas, const QString& texto) {
    const auto lineas = grid::LeerTabulado(texto);
    if (!lineas) return Avisar(u"Lo copiado es demasiado para pegarlo aquí"_s);
    int rechazadas = 0;
    QString primera;
    fila = std::max(fila, 0);
    for (const QStringList& celdas : *lineas) {
        while (fila < renglones_.size() && renglones_[fila].marca == Marca::Borrada)
            ++fila;
        if (fila >= kRenglonesMax) {
            ++rechazadas;
            continue;
        }
        if (fila == renglones_.size()) AgregarAlFinal();
        for (qsizetype c = 0; c < std::min(celdas.size(), columnas.size()); ++c) {
            if (!Editable(fila, columnas[c])) continue;
            Renglon& renglon = renglones_[fila];
            const QStringList antes = renglon.celdas;
            const Resultado resultado = Aceptar(renglon, columnas[c], celdas[c]);
            if (renglon.celdas != antes) cambiado_ = true;
            if (renglon.celdas != antes && renglon.marca == Marca::Ninguna) {
                renglon.marca = Marca::Modificada;
            }
            if (resultado.bien) continue;
            if (rechazadas++ == 0) primera = resultado.objecion;
        }
        ++fila;
    }
    if (rechazadas == 0) return;
    Avisar(u"No se pudieron pegar %1 celdas. La primera: %2"_s.arg(QString::number(rechazadas),
                                                                   primera));
}

void DetalleSesion::Ordenar(int columna, Qt::SortOrder orden) {
    orden_ = columna;
    sentido_ = orden;
    const TipoCeldaDetalle tipo = Columna(columna).tipo;
    const auto menor = [tipo](const QString& a, const QString& b) {
        if (tipo == TipoCeldaDetalle::Fecha) return data::FechaDeTexto(a) < data::FechaDeTexto(b);
        if (tipo == TipoCeldaDetalle::Lista || tipo == TipoCeldaDetalle::Nombre) {
            return a.localeAwareCompare(b) < 0;
        }
        return a.toDouble() < b.toDouble();
    };
    std::stable_sort(renglones_.begin(), renglones_.end(), [&](const Renglon& a, const Renglon& b) {
        const QString& primera = a.celdas[columna];
        const QString& segunda = b.celdas[columna];
        return orden == Qt::AscendingOrder ? menor(primera, segunda) : menor(segunda, primera);
    });
}

QString DetalleSesion::Literal(const Renglon& renglon, int celda, const QString& clave) const {
    if (celda == kClaveDelRegistro) return clave;
    const QString& texto = renglon.celdas[celda];
    const TipoCeldaDetalle tipo = Columna(celda).tipo;
    if (tipo == TipoCeldaDetalle::Entero && texto.isEmpty()) return u"0"_s;
    if (tipo != TipoCeldaDetalle::Fecha) return texto;
    if (texto.isEmpty()) return u"NULL"_s;
    return u'\'' + data::DuplicaApostrofes(texto) + u'\'';
}

QString DetalleSesion::Condicion(const Renglon& renglon, const QString& clave) const {
    const QString& cargada = renglon.cargadas.value(def_->columna_renglon.celda);
    // A key is a number, except for dates.
    const QString valor =
        EsClave(cargada) ? cargada : u'\'' + data::DuplicaApostrofes(cargada) + u'\'';
    return def_->columna_registro % u'=' % clave % u" AND "_s % def_->columna_renglon.columna %
           u'=' % valor;
}

bool DetalleSesion::Insertar(const Renglon& renglon, const QString& clave) {
    QStringList campos;
    QStringList valores;
    for (const CampoDetalle& campo : def_->alta) {
        campos << campo.columna.toString();
        valores << Literal(renglon, campo.celda, clave);
    }
    return ado_->Insertar(def_->tabla.toString(), campos.join(u','), valores.join(u','));
}

bool DetalleSesion::Cambiar(const Renglon& renglon, const QString& clave) {
    QStringList asignaciones;
    for (const CampoDetalle& campo : def_->cambio)
        asignaciones << QString(campo.columna % u'=' % Literal(renglon, campo.celda, clave));
    return ado_->Modificar(nullptr, def_->tabla.toString(), asignaciones.join(u','),
                           Condicion(renglon, clave));
}

DetalleSesion::Guardado DetalleSesion::GuardarRenglon(qsizetype fila, const QString& clave) {
    Renglon& renglon = renglones_[fila];
    bool bien = true;
    switch (renglon.marca) {
        case Marca::Ninguna:
            return Guardado::Hecho;
        case Marca::Nueva:
            if (renglon.celdas[def_->celda_clave].isEmpty()) return Guardado::Hecho;
            bien = Insertar(renglon, clave);
            break;
        case Marca::Modificada:
            if (def_->cambio.empty()) return Guardado::Hecho;
            bien = Cambiar(renglon, clave);
            break;
        case Marca::Borrada:
            // What is refused here the layer tells itself.
            static_cast<void>(ado_->Borrar(nullptr, def_->tabla.toString(), std::nullopt,
                                           Condicion(renglon, clave)));
            break;
    }
    if (!bien) return ContarFallo(*ado_) ? Guardado::Interrumpido : Guardado::Hecho;
    if (renglon.marca == Marca::Borrada) return Guardado::Hecho;
    for (const CampoDetalle& campo : def_->alta) {
        if (campo.columna != def_->columna_renglon.columna) continue;
        renglon.celdas[def_->columna_renglon.celda] = renglon.celdas[campo.celda];
    }
    renglon.cargadas = renglon.celdas;
    renglon.marca = Marca::Ninguna;
    return Guardado::Hecho;
}

DetalleSesion::Guardado DetalleSesion::Guardar(const QString& clave) {
    if (def_->guardar == GuardarDetalle::Reemplazar) {
        if (!BorrarTodos(clave)) return Guardado::Interrumpido;
    }
    if (!def_->repetido.isEmpty()) ado_->CpsMen_LLave_Repetida = def_->repetido.toString();
    for (qsizetype fila = 0; fila < renglones_.size(); ++fila) {
        if (def_->guardar == GuardarDetalle::EnSitio) {
            if (GuardarRenglon(fila, clave) == Guardado::Interrumpido) {
                return Guardado::Interrumpido;
            }
            continue;
        }
        const Renglon& renglon = renglones_[fila];
        if (renglon.marca == Marca::Borrada || renglon.celdas[def_->celda_clave].isEmpty()) {
            continue;
        }
        if (!Insertar(renglon, clave) && ContarFallo(*ado_)) return Guardado::Interrumpido;
    }
    return Guardado::Hecho;
}

bool DetalleSesion::BorrarTodos(const QString& clave) {
    return ado_->Borrar(nullptr, def_->tabla.toString(), std::nullopt,
                        def_->columna_registro % u'=' % clave);
}

}  // namespace quimo::catalog
