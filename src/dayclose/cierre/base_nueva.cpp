#include "dayclose/cierre/base_nueva.h"

#include <algorithm>

#include "base/letras_terminal.h"
#include "data/consultar.h"
#include "data/valores.h"
#include "dayclose/cierre/folios.h"
#include "dayclose/terminales/valor_terminal.h"
#include "foundation/parametros.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

using data::Fila;
using foundation::ClsAdo;

namespace {

const QString& SobrePlantilla() {
    static const QString kTexto = u"Plantilla de las terminales"_s;
    return kTexto;
}

template <typename T>
ResultadoCierre<T> DePlantilla(base::Result<T> resultado) {
    if (!resultado) return DeFallo(resultado.error(), SobrePlantilla());
    return std::move(resultado).value();
}

ResultadoCierre<void> DePlantilla(const base::Result<void>& resultado) {
    if (!resultado) return DeFallo(resultado.error(), SobrePlantilla());
    return {};
}

Interrupcion NoCabe(const QVariant& valor, const QString& columna, const QString& tabla) {
    return {Interrupcion::Motivo::Error, kDatoNoCabe,
            u"El valor '"_s + data::TextoDeValor(valor) + u"' no cabe en la columna "_s + columna +
                u" de la tabla "_s + tabla + u" de las terminales."_s};
}

QString TextoDe(const char16_t* texto) {
    return texto == nullptr ? QString() : QString::fromUtf16(texto);
}

/// What holds at this hour: begun and not ended, or without an end, whatever its beginning.
QString VigenteAhora(const QString& que) {
    return u"(GETDATE() BETWEEN Fecha_Inicio_%1 AND Fecha_Fin_%1 OR Fecha_Fin_%1 IS NULL)"_s.arg(
        que);
}

QString CondicionDe(const DefCatalogo& catalogo) {
    const QString condicion = TextoDe(catalogo.condicion);
    if (catalogo.vigencia == nullptr) return condicion;
    const QString vigente = VigenteAhora(TextoDe(catalogo.vigencia));
    return condicion.isEmpty() ? vigente : condicion + u" AND "_s + vigente;
}

/// What names a row to people: its first value and its first text.
QString NombreDeFila(const QString& destino, const QVector<data::Columna>& columnas,
                     const Fila& fila) {
    QString nombre = destino;
    for (qsizetype i = 0; i < fila.size(); ++i) {
        if (fila[i].metaType().id() == QMetaType::QString) {
            return nombre + u" '"_s + fila[i].toString() + u'\'';
        }
        if (i == 0) {
            nombre += u' ' + columnas[i].nombre + u'=' + data::TextoDeValor(fila[i]);
        }
    }
    return nombre;
}

/// Which columns some index of the table holds.
std::vector<bool> ColumnasDeIndices(const jet::DefTabla& tabla) {
    std::vector<bool> indexadas(tabla.columnas.size(), false);
    for (const jet::DefIndice& indice : tabla.indices) {
        for (const jet::ColumnaDeIndice& columna : indice.columnas) {
            for (std::size_t i = 0; i < tabla.columnas.size(); ++i) {
                if (tabla.columnas[i].nombre == columna.nombre) indexadas[i] = true;
            }
        }
    }
    return indexadas;
}

/// Puts '?' in the place of every letter that no index of a terminal can hold. The letters.
QString QuitarLetrasAjenas(jet::Valor& valor) {
    auto* texto = std::get_if<std::u16string>(&valor);
    if (texto == nullptr) return {};
    QString ajenas;
    while (const auto lugar = base::PrimeraLetraAjena(*texto)) {
        const bool par = QChar::isHighSurrogate((*texto)[*lugar]) && *lugar + 1 < texto->size();
        const QString letra = QString::fromUtf16(texto->data() + *lugar, par ? 2 : 1);
        if (!ajenas.contains(letra)) ajenas += letra;
        texto->replace(*lugar, par ? 2 : 1, u"?");
    }
    return ajenas;
}

}  // namespace

ResultadoCierre<QVector<Terminal>> TerminalesPorMenu(ClsAdo& ado) {
    QUIMO_TRY(const QVector<Fila> filas,
              data::Consultar(ado.Conexion(),
                              u"SELECT ID_Terminal,Nombre_Terminal,ID_Menu FROM Terminal WHERE "
                              u"Estado_Terminal='A' ORDER BY ID_Menu"_s));
    QVector<Terminal> terminales;
    for (const Fila& fila : filas) {
        terminales.append({fila[0].toInt(), fila[1].toString(), fila[2].toInt()});
    }
    return terminales;
}

ResultadoCierre<BaseNueva> BaseNueva::Preparar(ClsAdo& ado, const QString& carpeta) {
    const QString archivo = carpeta + u"/Quimo_Terminal.mdb"_s;
    QUIMO_TRY(const Copiado copiado, CopiarEntero(carpeta + u"/Plantilla.mdb"_s, archivo));
    static_cast<void>(copiado);
    QUIMO_TRY(jet::BaseDatos base,
              DePlantilla(jet::BaseDatos::Abrir(archivo.toStdString(), jet::Modo::Escritura)));
    BaseNueva nueva(ado, std::move(base), archivo);
    QUIMO_TRY_VOID(nueva.Llenar());
    return nueva;
}

ResultadoCierre<void> BaseNueva::Ensayar(ClsAdo& ado, const QString& carpeta) {
    const QString plantilla = carpeta + u"/Plantilla.mdb"_s;
    // Whether it can be read at all is told as when it is copied.
    QUIMO_TRY(const QString sha256, Sha256DeArchivo(plantilla));
    static_cast<void>(sha256);
    QUIMO_TRY(jet::BaseDatos base,
              DePlantilla(jet::BaseDatos::Abrir(plantilla.toStdString(), jet::Modo::Escritura)));
    BaseNueva ensayo(ado, std::move(base), plantilla);
    QUIMO_TRY_VOID(ensayo.Llenar());
    QUIMO_TRY(const QVector<Terminal> terminales, TerminalesPorMenu(ado));
    for (const Terminal& terminal : terminales)
        QUIMO_TRY_VOID(ensayo.PonerTerminal(terminal, {}));
    return {};
}

ResultadoCierre<void> BaseNueva::Llenar() {
    for (const DefCatalogo& catalogo : Catalogos()) {
        const QString destino = TextoDe(catalogo.destino);
        QUIMO_TRY_VOID(Copiar(destino, TextoDe(catalogo.columnas),
                              catalogo.fuentes == nullptr ? destino : TextoDe(catalogo.fuentes),
                              CondicionDe(catalogo)));
    }
    QUIMO_TRY(propios_, DePlantilla(LeerParametrosTerminal(base_)));
    return {};
}

ResultadoCierre<jet::Tabla> BaseNueva::Tabla(const QString& nombre) const {
    QUIMO_TRY(jet::Tabla tabla, DePlantilla(base_.AbrirTabla(nombre.toStdString())));
    // Also of a table that gets no row today: another sort order, relationships.
    QUIMO_TRY_VOID(DePlantilla(tabla.SeEscribe()));
    return tabla;
}

ResultadoCierre<std::size_t> BaseNueva::Columna(const jet::Tabla& tabla,
                                                const QString& nombre) const {
    auto columna = tabla.Columna(nombre.toStdString());
    if (!columna) return DeFallo(columna.error(), SobrePlantilla(), Buscado::Columna);
    return *columna;
}

ResultadoCierre<void> BaseNueva::Copiar(const QString& destino, const QString& columnas,
                                        const QString& fuentes, const QString& condicion) {
    QString consulta = u"SELECT "_s + columnas + u" FROM "_s + fuentes;
    if (!condicion.isEmpty()) consulta += u" WHERE "_s + condicion;
    QUIMO_TRY(const data::Conjunto origen, data::ConjuntoDe(ado_->Conexion().Ejecutar(consulta)));
    QUIMO_TRY(jet::Tabla tabla, Tabla(destino));
    std::vector<std::size_t> lugares;
    for (const data::Columna& columna : origen.columnas) {
        QUIMO_TRY(const std::size_t lugar, Columna(tabla, columna.nombre));
        lugares.push_back(lugar);
    }
    const jet::DefTabla& definicion = tabla.Definicion();
    const std::vector<bool> indexadas = ColumnasDeIndices(definicion);
    jet::Fila valores(definicion.columnas.size());
    for (const Fila& fila : origen.filas) {
        for (std::size_t i = 0; i < lugares.size(); ++i) {
            const jet::DefColumna& columna = definicion.columnas[lugares[i]];
            const QVariant& central = fila[static_cast<qsizetype>(i)];
            auto valor = AValorTerminal(central, columna.tipo);
            if (!valor) return NoCabe(central, QString::fromStdString(columna.nombre), destino);
            valores[lugares[i]] = *std::move(valor);
            if (!indexadas[lugares[i]]) continue;
            const QString ajenas = QuitarLetrasAjenas(valores[lugares[i]]);
            if (ajenas.isEmpty()) continue;
            avisos_ << u"%1: las terminales no pueden guardar '%2' en %3; en su lugar va '?'."_s
                           .arg(NombreDeFila(destino, origen.columnas, fila), ajenas,
                                QString::fromStdString(columna.nombre));
        }
        const auto id = tabla.Insertar(valores);
        if (!id) {
            Interrupcion fallo = DeFallo(id.error(), SobrePlantilla());
            fallo.detalle = u"No se pudo pasar a las terminales: "_s +
                            NombreDeFila(destino, origen.columnas, fila);
            return fallo;
        }
    }
    return {};
}

ResultadoCierre<void> BaseNueva::PonerMenu(int menu) {
    for (const QString& nombre : {u"ProductosXSubmenu"_s, u"Submenu"_s}) {
        QUIMO_TRY(jet::Tabla tabla, Tabla(nombre));
        QUIMO_TRY_VOID(DePlantilla(tabla.Vaciar()));
    }
    QUIMO_TRY_VOID(Copiar(
        u"Submenu"_s, u"Submenu.ID_Submenu,Nombre_Submenu,SubMenu_Fijo,Orden"_s,
        u"Submenu,SubmenuXMenu"_s,
        u"Submenu.ID_Submenu=SubmenuXMenu.ID_Submenu AND ID_Menu="_s + QString::number(menu)));
    QUIMO_TRY_VOID(Copiar(u"ProductosXSubmenu"_s, u"ID_Submenu,ID_Producto"_s,
                          u"ProductosXSubmenu"_s, QString()));
    return PonerPrecios(menu);
}

ResultadoCierre<void> BaseNueva::PonerPrecios(int menu) {
    QUIMO_TRY(const QVector<Fila> precios,
              data::Consultar(ado_->Conexion(),
                              u"SELECT ID_Producto,Precio FROM PreciosXMenu WHERE ID_Menu="_s +
                                  QString::number(menu)));
    QHash<qint64, QVariant> precio_de;
    for (const Fila& fila : precios)
        precio_de.insert(fila[0].toLongLong(), fila[1]);
    QUIMO_TRY(jet::Tabla productos, Tabla(u"Producto"_s));
    QUIMO_TRY(const std::size_t clave, Columna(productos, u"ID_Producto"_s));
    QUIMO_TRY(const std::size_t columna, Columna(productos, u"Precio_Producto"_s));
    QUIMO_TRY(jet::Cursor cursor, DePlantilla(productos.Recorrer()));
    while (true) {
        QUIMO_TRY(const bool hay, DePlantilla(cursor.Siguiente()));
        if (!hay) return {};
        const jet::Valor& id = cursor.Valores()[clave];
        const auto* numero = std::get_if<std::int32_t>(&id);
        // Without a price in this menu it is 0, also when the menu before had priced it.
        const QVariant precio = numero == nullptr ? QVariant() : precio_de.value(*numero);
        auto valor = AValorTerminal(precio.isValid() ? precio : QVariant(0),
                                    productos.Definicion().columnas[columna].tipo);
        if (!valor) return NoCabe(precio, u"Precio_Producto"_s, u"Producto"_s);
        const jet::Cambio cambio{columna, *std::move(valor)};
        QUIMO_TRY_VOID(DePlantilla(productos.Actualizar(cursor.Id(), std::span(&cambio, 1))));
    }
}

ResultadoCierre<void> BaseNueva::PonerParametro(const char16_t* clave, qint64 valor) {
    QUIMO_TRY(jet::Tabla parametros, Tabla(u"Parametros"_s));
    QUIMO_TRY(const std::size_t columna, Columna(parametros, u"Valor_Num"_s));
    QUIMO_TRY(const std::size_t llave, Columna(parametros, u"ID_Parametro"_s));
    const jet::TipoColumna tipo = parametros.Definicion().columnas[columna].tipo;
    auto nuevo = AValorTerminal(QVariant(valor), tipo);
    if (!nuevo) return NoCabe(QVariant(valor), u"Valor_Num"_s, u"Parametros"_s);
    const jet::Cambio cambio{columna, *std::move(nuevo)};
    QUIMO_TRY(jet::Cursor cursor, DePlantilla(parametros.Recorrer()));
    while (true) {
        QUIMO_TRY(const bool hay, DePlantilla(cursor.Siguiente()));
        if (!hay) return {};
        const auto* texto = std::get_if<std::u16string>(&cursor.Valores()[llave]);
        if (texto == nullptr) continue;
        if (QString::fromStdU16String(*texto).compare(QString::fromUtf16(clave),
                                                      Qt::CaseInsensitive) != 0) {
            continue;
        }
        QUIMO_TRY_VOID(DePlantilla(parametros.Actualizar(cursor.Id(), std::span(&cambio, 1))));
    }
}

ResultadoCierre<void> BaseNueva::PonerTerminal(const Terminal& terminal,
                                               const ContadoresMinimos& minimos) {
    if (menu_ != terminal.menu) {
        QUIMO_TRY_VOID(PonerMenu(terminal.menu));
        menu_ = terminal.menu;
    }
    QUIMO_TRY_VOID(PonerParametro(foundation::parametro::kTerminal, terminal.id));
    QUIMO_TRY(const qint64 folio, SiguienteFolioProductos(*ado_, terminal.id));
    QUIMO_TRY_VOID(PonerParametro(foundation::parametro::kFolioProductos, folio));
    const bool subir =
        minimos.comanda > propios_.folio_comanda || minimos.pago > propios_.folio_pago;
    if (!subir && !subidos_) return {};
    subidos_ = subir;
    QUIMO_TRY_VOID(PonerParametro(foundation::parametro::kFolioComanda,
                                  std::max(minimos.comanda, propios_.folio_comanda)));
    return PonerParametro(foundation::parametro::kFolioPago,
                          std::max(minimos.pago, propios_.folio_pago));
}

ResultadoCierre<void> BaseNueva::Adaptar(const Terminal& terminal,
                                         const ContadoresMinimos& minimos) {
    QUIMO_TRY_VOID(PonerTerminal(terminal, minimos));
    // Whether its folder is durable is no matter: the working file is made anew in every close.
    return DePlantilla(base_.Guardar());
}

}  // namespace quimo::dayclose
