-- What the day's statistics file holds, counted by DuckDB from the day's log: the lines of the file
-- in its order, the users of an hour in any.
--
-- The same day as for estatistica.awk, and each id submitted once. The words have the numbers that
-- the parser gives them: agent 0, status 1, id 3, the event's own 4 to 9.

create macro palavras() as table
select *
from read_csv(getvariable('arquivo'), delim = ' ', quote = '', escape = '', header = false,
    encoding = 'latin-1', auto_detect = false, strict_mode = false, null_padding = true,
    columns = {'semana': 'varchar', 'mes': 'varchar', 'dia': 'varchar', 'hora': 'varchar',
        'ano': 'varchar', 'processo': 'varchar', 'agente': 'varchar', 'status': 'varchar',
        'msg': 'varchar', 'id': 'varchar', 'p4': 'varchar', 'p5': 'varchar', 'p6': 'varchar',
        'p7': 'varchar', 'p8': 'varchar', 'p9': 'varchar'});

-- What the events do. `palavra` is the number of the word that one needs beside the id; an error that
-- is `pendente` is over when the domain that it names takes the message.
create table regras as
select row_number() over ()::utinyint as regra, agente, status, palavra, agente = 'MAILSMTP' as smtp,
    tipo = 'submete' as submete,
    tipo in ('tenta', 'aceita', 'final') as tenta,
    tipo = 'aceita' as aceita,
    tipo in ('encerra', 'virus') as encerra,
    tipo = 'spam' as spam,
    tipo = 'virus' as virus,
    tipo in ('pendente', 'dominio', 'destino', 'dados') as erro,
    tipo in ('pendente', 'dominio') as pendente,
    tipo = 'dados' as dados,
    tipo in ('tamanho', 'final') as fatal,
    tipo in ('pendente', 'destino', 'dados', 'tamanho', 'final') as conta_erro,
    tipo in ('submete', 'tenta', 'aceita', 'encerra', 'spam') as conhece
from (values
    ('MAILQ', 'SUBMIT', 7, 'submete'),
    ('MAILQ', 'DELIVER', null, 'tenta'),
    ('MAILQ', 'OK', 5, 'aceita'),
    ('MAILQ', 'END', null, 'encerra'),
    ('MAILSMTP', 'DELIVER', null, 'tenta'),
    ('MAILSMTP', 'OK', 5, 'aceita'),
    ('MAILSMTP', 'END', null, 'encerra'),
    ('MAILSMTP', 'ERROR_CONNECT', 6, 'pendente'),
    ('MAILSMTP', 'ERROR_CONNECTION', 6, 'pendente'),
    ('MAILSMTP', 'ERROR_SENDER', 8, 'pendente'),
    ('MAILSMTP', 'ERROR_HELO', 5, 'pendente'),
    ('MAILSMTP', 'ERROR_DOMAIN', 5, 'dominio'),
    ('MAILSMTP', 'ERROR_DEST', 5, 'destino'),
    ('MAILSMTP', 'ERROR_DATA', null, 'dados'),
    ('MAILSMTP', 'ERROR_SIZE', null, 'tamanho'),
    ('MAILSMTP', 'ERROR_FINAL', null, 'final'),
    ('ANTIVIRUS', 'VIRUS', null, 'virus'),
    ('SPAMCATCHER', 'COPY', null, 'spam'),
    ('SPAMCATCHER', 'TAGGED', null, 'spam'),
    ('SPAMCATCHER', 'QUARANTINE', null, 'spam'),
    ('SPAMCATCHER', 'DISCARD', null, 'spam')) as t(agente, status, palavra, tipo);

-- The events in the order of the log, `n`. Bounces lack the sender: "com" stands in his place.
create table lidos as
select n, hora[1:2]::utinyint as hora, id, regra,
    case palavra when 5 then p5 when 6 then p6 when 7 then if(p7 = 'com', '', p7) when 8 then p8
    end as texto,
    if(submete, if(p7 = 'com', p8, p9)::bigint % 4294967296, null) as tamanho,
    submete and (p5[1] = 'I' or p5[1] = 'S' and p5[9] = 'I') as interno
from (select row_number() over () as n, * from palavras()) join regras using (agente, status)
where id is not null and (palavra is null or texto is not null)
    and (status <> 'ERROR_DOMAIN' or p4 = 'Dominio');

create view eventos as select * from lidos join regras using (regra);

-- The messages that the log makes known, and from which event on.
create table mensagens as
select id, min(n) as conhecida, coalesce(max(tamanho), 0) as tamanho,
    max(n) filter (submete) as submissao, max(texto) filter (interno) as remetente,
    max(n) filter (smtp and encerra) as fim_smtp, bool_or(tenta) as tentada,
    bool_or(aceita) as aceita, bool_or(encerra) as encerrada, bool_or(spam) as spam
from eventos where conhece group by id;

-- Errors and viruses, which make no message known.
create table faltas as
select e.*, m.fim_smtp, m.submissao, m.remetente, m.tamanho as bytes
from eventos e join mensagens m using (id) where not e.conhece and e.n > m.conhecida;

create table contados as
select e.n, e.hora, if(e.aceita, e.texto, m.remetente) as usuario, not e.aceita as enviada,
    e.aceita as recebida, e.spam, false as virus, false as erro,
    if(m.submissao < e.n, m.tamanho, 0) as bytes
from eventos e join mensagens m using (id)
where e.aceita or (e.encerra or e.spam) and e.conhece and m.remetente is not null and m.submissao < e.n
union all
select n, hora, remetente, virus, false, false, virus, conta_erro, if(virus, bytes, 0)
from faltas where (virus or conta_erro) and remetente is not null and submissao < n;

create table usuarios as
select hora, usuario, count(*) filter (enviada) as enviadas, sum(bytes) filter (enviada) as b_enviados,
    count(*) filter (recebida) as recebidas, sum(bytes) filter (recebida) as b_recebidos,
    count(*) filter (virus) as virus, count(*) filter (spam) as spam, count(*) filter (erro) as erros
from contados group by hora, usuario;

-- Acceptances that may settle an error of their message.
create table resolve as
select a.id, a.n, a.texto, m.fim_smtp
from eventos a join mensagens m using (id)
where a.aceita and a.smtp and id in (select id from faltas where erro);

-- Messages with an error at their last MAILSMTP END, or after it: of a text, when no acceptance of
-- its domain came in between; of data, which carry no text, when more were seen than were taken
-- away, one or two an acceptance, and never below none.
create table falhas as
with textos as (
    select id, texto, any_value(fim_smtp) as fim, max(n) as ultimo, max(n) filter (n < fim_smtp) as antes
    from faltas where pendente group by id, texto
), dominios as (
    select id, split_part(texto, '@', 2) as texto, max(n) as aceito
    from resolve where n < fim_smtp and contains(texto, '@') group by all
), passos as (
    select id, n, 1 as passo, fim_smtp from faltas where dados
    union all
    select id, n, if(contains(texto, '@'), -2, -1), fim_smtp
    from resolve where id in (select id from faltas where dados)
), somas as (
    select *, sum(passo) over (partition by id order by n) as soma from passos
)
select id from faltas where erro and (fim_smtp is null or n > fim_smtp or not pendente and not dados)
union
select id from textos left join dominios using (id, texto) where antes > coalesce(aceito, 0)
union
select id from somas where n < fim_smtp group by id having arg_max(soma, n) > least(0, min(soma));

-- Counters are 32 bits wide and written as signed numbers.
create macro int32(x) as (coalesce(x, 0)::bigint + 2147483648) % 4294967296 - 2147483648;

create table totais as
with graves as (
    select id, bool_or(fatal) as fatal, bool_or(tenta) as tentada, bool_or(virus) as virus
    from faltas group by id
), estados as (
    select m.tamanho, m.aceita, m.spam, m.remetente is not null as interna,
        m.tentada or coalesce(g.tentada, false) as tentada, coalesce(g.virus, false) as virus,
        m.encerrada or coalesce(g.fatal or g.virus, false) as terminada,
        f.id is not null or coalesce(g.fatal, false) as falhou
    from mensagens m left join graves g using (id) left join falhas f using (id)
), contas as (
    select *, tentada and if(falhou, aceita, terminada) as conta from estados
)
select count(*) filter (terminada and tentada and spam) as spam,
    count(*) filter (terminada and virus) as virus,
    count(*) filter (tentada and falhou) as erro,
    count(*) filter (conta and interna) as msgs_int, sum(tamanho) filter (conta and interna) as bytes_int,
    count(*) filter (conta and not interna) as msgs_ext,
    sum(tamanho) filter (conta and not interna) as bytes_ext
from contas;

with dia as (
    select epoch(strptime(concat_ws(' ', dia, mes, ano[1:4]), '%d %b %Y'))::bigint as inicio
    from palavras() limit 1
), limites as (
    select coalesce(arg_min(hora, n), 0) as primeira, coalesce(arg_max(hora, n), 23) as ultima
    from contados
), linhas as (
    select -1 as hora, 0 as ordem, concat_ws(' ', inicio + primeira * 3600,
        inicio + ultima * 3600 + 3599, spam, virus, erro, 0, msgs_int, int32(bytes_int), msgs_ext,
        int32(bytes_ext)) as linha
    from dia, limites, totais
    union all
    select h, 0, concat('[', inicio + h * 3600, ']') from dia, range(24) as t(h)
    union all
    select hora, 1, concat_ws(' ', usuario, enviadas, int32(b_enviados), recebidas,
        int32(b_recebidos), virus, spam, erros, 0)
    from usuarios
)
select linha from linhas order by hora, ordem;
