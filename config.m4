dnl The loadable extension; built out of tree by ./dev build.
PHP_ARG_ENABLE([vt_mrel],
  [whether to build the mail report extension],
  [AS_HELP_STRING([--enable-vt_mrel], [Build the mail report extension])],
  [yes])

if test "$PHP_VT_MREL" != "no"; then
  PHP_REQUIRE_CXX()
  VT_MREL_SOURCES="
    misc/chave.cpp
    misc/gravacao.cpp
    misc/leitor.cpp
    misc/ncutils.cpp
    misc/reserva.cpp
    misc/texto.cpp
    borland/XmlRegistry.cpp
    borland/XmlValueStore.cpp
    borland/vtstring.cpp
    borland/vtstringlist.cpp
    borland/xmlhelper.cpp
    common/Contadores.cpp
    common/Evento.cpp
    common/LogFileParser.cpp
    common/LogFileParser_entrada.cpp
    common/LogMailFileParser.cpp
    common/LogMailFileParser_estatistica.cpp
    common/LogMailFileParser_eventos.cpp
    common/LogMailFileParser_hora.cpp
    common/LogMailFileParser_leitura.cpp
    common/LogMailFileParser_linha.cpp
    common/LogMailFileParser_periodos.cpp
    common/LogMailFileParser_portas.cpp
    common/LogMailFileParser_replay.cpp
    common/LogMailFileParser_retomada.cpp
    common/LogMailFileParser_trace.cpp
    common/LogMailFileParser_usuario.cpp
    common/Msg.cpp
    common/Trabalho.cpp
    common/Usuario.cpp
    common/auxiliar.cpp
    common/compacta.cpp
    common/diario.cpp
    common/logresult.cpp
    common/passada.cpp
    common/relogio.cpp
    common/relutl.cpp
    php/vtmrel.cpp
    php/vtmrel_itr.cpp
    php/vtmrel_obj.cpp
  "
  dnl Level 2 of the fortified functions, whatever the distribution adds: level 3 takes a limit that is the whole of a record for an overflow.
  dnl Optimised as one program: what happens to a line goes through many small functions in several files.
  VT_MREL_FLAGS="-std=c++20 -O3 -flto=auto -fvisibility=hidden -Wall -Wextra -Wformat=2 -Werror -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2"
  PHP_NEW_EXTENSION(vt_mrel, $VT_MREL_SOURCES, $ext_shared, , $VT_MREL_FLAGS, cxx)
  PHP_ADD_INCLUDE($ext_srcdir)
  PHP_ADD_BUILD_DIR([$ext_builddir/misc $ext_builddir/borland $ext_builddir/common $ext_builddir/php])
fi
