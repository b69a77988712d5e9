#include "app/comandos/comando.h"

#include <algorithm>
#include <array>

#include "app/comandos/consola.h"

using namespace Qt::StringLiterals;

namespace quimo::app {

namespace {

constexpr DefOpcion kOpcionesCrear[] = {{u"sql", u"ARCHIVO"}};
constexpr DefOpcion kOpcionesSql[] = {{u"consulta", u"TEXTO"},
                                      {u"archivo", u"ARCHIVO"},
                                      {u"lineas"},
                                      {u"formato", u"tabla|csv|json"}};
constexpr DefOpcion kOpcionesCerrar[] = {
    {u"red", u"CARPETA"},   {u"dir", u"CARPETA"},     {u"ante-falla", u"abortar|ignorar"},
    {u"continuar"},         {u"descartar"},           {u"omitir", u"NOMBRE", true},
    {u"traer", u"ARCHIVO"}, {u"terminal", u"NOMBRE"}, {u"enviar", u"NOMBRE"}};

constexpr DefOpcion kOpcionesUsuario[] = {{u"nombre", u"NOMBRE"}};

constexpr DefComando kComandos[] = {
    {u"crear", u"SERVIDOR BASE", 2, 2, kOpcionesCrear,
     u"crea las tablas y los procedimientos en una base vacía y ejecuta ARCHIVO (una sentencia por "
     u"línea)",
     ComandoCrear},
    {u"sql", u"SERVIDOR BASE", 2, 2, kOpcionesSql,
     u"ejecuta T-SQL en una sesión; con --lineas, una sentencia por línea de la entrada",
     ComandoSql},
    {u"cerrar", u"SERVIDOR BASE", 2, 2, kOpcionesCerrar,
     u"hace el proceso de fin de día; con --red, las carpetas de las terminales están montadas en "
     u"CARPETA; sin ella, se llega a ellas por la red. --continuar sigue con un cierre que no "
     u"terminó y --descartar lo deja; --omitir cierra sin una terminal; --traer copia después las "
     u"ventas de un archivo, y --enviar manda otra vez su base a una terminal",
     ComandoCerrar},
    {u"revisar-base",
     u"SERVIDOR BASE",
     2,
     2,
     {},
     u"revisa la base central: lo dañado en ella, un cierre que no terminó y las ventas "
     u"incompletas",
     ComandoRevisarBase},
    {u"plantilla",
     u"ARCHIVO",
     1,
     1,
     {},
     u"escribe una base de terminal vacía con todas sus tablas",
     ComandoPlantilla},
    {u"mdb",
     u"tablas|volcar|verificar ARCHIVO [TABLA] | reparar ARCHIVO DESTINO",
     2,
     3,
     {},
     u"lista, vuelca como JSON o verifica una base de terminal, o escribe una copia sana de una "
     u"dañada",
     ComandoMdb},
    {u"clave",
     u"ARCHIVO",
     1,
     1,
     {},
     u"crea un archivo con una clave nueva para cifrar las contraseñas",
     ComandoClave},
    {u"usuario", u"SERVIDOR BASE USUARIO", 3, 3, kOpcionesUsuario,
     u"da de alta al primer administrador; la contraseña se lee de la entrada", ComandoUsuario},
    {u"demo",
     u"CARPETA",
     1,
     1,
     {},
     u"prepara un restaurante de demostración, o deja que sus terminales vendan otro día",
     ComandoDemo},
};

QString Uso(const DefComando& comando) {
    QString texto = u"  quimoctl "_s + QString::fromUtf16(comando.nombre) + u' ' +
                    QString::fromUtf16(comando.palabras);
    for (const DefOpcion& opcion : comando.opciones) {
        texto += u" [--"_s + QString::fromUtf16(opcion.nombre);
        if (opcion.valor != nullptr) texto += u' ' + QString::fromUtf16(opcion.valor);
        texto += u']';
    }
    return texto + u"\n      "_s + QString::fromUtf16(comando.descripcion);
}

QString UsoGeneral() {
    QStringList lineas = {u"Uso:"_s};
    for (const DefComando& comando : kComandos)
        lineas << Uso(comando);
    return lineas.join(u'\n');
}

Estado MalUso(const QString& por_que, const QString& uso) {
    EscribirError(por_que + u'\n' + uso);
    return kMalUso;
}

/// Splits words and options; an empty text, or what is wrong with them.
QString Leer(const DefComando& comando, const QStringList& resto, Argumentos& leidos) {
    for (qsizetype i = 0; i < resto.size(); ++i) {
        const QString& palabra = resto[i];
        if (!palabra.startsWith(u"--"_s)) {
            leidos.palabras << palabra;
            continue;
        }
        const QString nombre = palabra.mid(2).section(u'=', 0, 0);
        const auto opcion = std::find_if(
            comando.opciones.begin(), comando.opciones.end(),
            [&](const DefOpcion& def) { return nombre == QString::fromUtf16(def.nombre); });
        if (opcion == comando.opciones.end()) return u"Opción desconocida: "_s + palabra;
        if (leidos.Hay(nombre) && !opcion->repetible)
            return u"La opción --"_s + nombre + u" está repetida."_s;
        const bool con_igual = palabra.contains(u'=');
        if (opcion->valor == nullptr) {
            if (con_igual) return u"La opción --"_s + nombre + u" no lleva valor."_s;
            leidos.opciones[nombre] << QString();
        } else if (con_igual) {
            leidos.opciones[nombre] << palabra.section(u'=', 1);
        } else if (i + 1 < resto.size()) {
            leidos.opciones[nombre] << resto[++i];
        } else {
            return u"Falta el valor de la opción --"_s + nombre + u'.';
        }
    }
    if (leidos.palabras.size() < comando.palabras_min) return u"Faltan argumentos."_s;
    if (leidos.palabras.size() > comando.palabras_max) {
        return u"Sobra el argumento '"_s + leidos.palabras[comando.palabras_max] + u"'."_s;
    }
    return {};
}

}  // namespace

std::span<const DefComando> Comandos() { return kComandos; }

Estado EjecutarComando(const QStringList& argumentos, const Entorno& entorno) {
    if (argumentos.isEmpty()) return MalUso(u"Falta el comando."_s, UsoGeneral());
    if (argumentos.first() == u"--ayuda"_s || argumentos.first() == u"--help"_s) {
        Escribir(UsoGeneral());
        return kHecho;
    }
    const auto* const comando =
        std::find_if(std::begin(kComandos), std::end(kComandos), [&](const DefComando& def) {
            return argumentos.first() == QString::fromUtf16(def.nombre);
        });
    if (comando == std::end(kComandos)) {
        return MalUso(u"Comando desconocido: "_s + argumentos.first(), UsoGeneral());
    }
    Argumentos leidos;
    const QString error = Leer(*comando, argumentos.mid(1), leidos);
    if (!error.isEmpty()) return MalUso(error, u"Uso:\n"_s + Uso(*comando));
    return comando->ejecutar(leidos, entorno);
}

}  // namespace quimo::app
