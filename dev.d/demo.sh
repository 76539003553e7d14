# ./dev demo: what a user sees.

demo() {
    build
    mkdir -p out
    cmake_build release gera_logs
    say "three days of a medium company's mail, in out/demo"
    rm -rf out/demo
    out/release/gera_logs out/demo/logs 2026-03-10 --dias 3 --mensagens 20000 --usuarios 400
    "$PHP" -n -d "extension=$extension" demo/demo.php out/demo
    say "the same at a terminal"
    demo_command
}

# The command over the demo's data: who sent most, what he sent, what became of a message of his.
demo_command() {
    printf '[demo]\ndados = out/demo/dat\nlogs = out/demo/logs\nponto = out/demo/ultima_consolidacao\n' >out/demo/vt-mrel.ini
    export VT_MREL_CONFIG=out/demo/vt-mrel.ini
    printf '$ export VT_MREL_CONFIG=%s\n' "$VT_MREL_CONFIG"
    most=$(bin/vtmrel topo --de ultimos-7 --n 1 --formato csv | sed -n '2s/^1,\(.*\),.*/\1/p')
    failed=$(bin/vtmrel mensagens --remetente "$most" --formato csv | sed -n 's/,.*,com_erro$//p' | tail -n 1)
    type_in topo --de ultimos-7 --n 10
    type_in mensagens --remetente "$most" --limite 5
    type_in rastro "$failed"
}

# type_in ARGUMENT ...: a command line and what it answers, as a table even into a pipe.
type_in() {
    [ -t 1 ] || set -- "$@" --formato tabela
    printf '\n$ bin/vtmrel %s\n' "$*"
    bin/vtmrel "$@"
}
